#pragma once

#include "engine/storage/AggregateTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

/// A packed key and a time bucket.
struct AggregateCell {
    std::uint32_t key = 0, bucket = 0;

    bool operator==(const AggregateCell&) const = default;
};

/// The prefix sums of one aggregate, see AggregateTable.
struct PrefixSums {
    std::vector<std::uint32_t> keys;   ///< packed keys
    std::vector<std::uint32_t> starts; ///< each key's first prefix sum
    std::vector<std::uint64_t> bucketMasks;
    std::vector<std::vector<std::int64_t>> sums; ///< prefix sums by measure
    std::vector<std::uint32_t> counts;           ///< prefix counts
};

/// Appends prefix sums in the order of their cells.
class PrefixSumWriter {
public:
    /// `summed` are the measures that are summed; the others are counts.
    PrefixSumWriter(PrefixSums& prefixSums, std::span<const std::size_t> summed)
        : prefixSums_(prefixSums), summed_(summed) {}

    /// Continues with the prefix sum of that cell, which is the current one or a later one. The caller adds
    /// facts to the last element of `counts` and `sums`.
    void MoveTo(AggregateCell cell);

private:
    PrefixSums& prefixSums_;
    std::span<const std::size_t> summed_;
    std::optional<AggregateCell> last_;
};

/// Appends the coarser aggregate, which leaves out one column of the packed key, when it has far fewer keys.
/// Returns the number of its keys.
std::uint32_t AddCoarserAggregate(const AggregateTable::PackedKeyColumn& leftOut,
                                  std::span<const std::size_t> summed, PrefixSums& prefixSums);

} // namespace qel::engine
