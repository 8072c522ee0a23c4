#pragma once

#include "engine/storage/AggregateTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

/// A strip's word, and a bucket of time.
struct AggregateCell {
    std::uint32_t key = 0, bucket = 0;

    bool operator==(const AggregateCell&) const = default;
};

/// The strips of one aggregate, as AggregateTable explains them.
struct PrefixSums {
    std::vector<std::uint32_t> keys, starts;
    std::vector<std::uint64_t> bucketMasks;
    std::vector<std::vector<std::int64_t>> sums; ///< running, by measure
    std::vector<std::uint32_t> counts;           ///< running
};

/// Writes strips behind those that are there, entry by entry, by word and bucket.
class PrefixSumWriter {
public:
    /// `summed` are the measures that are summed; the others count.
    PrefixSumWriter(PrefixSums& prefixSums, std::span<const std::size_t> summed)
        : prefixSums_(prefixSums), summed_(summed) {}

    /// Goes on with the entry of that place, which is the last one or behind it: the last of the counts and
    /// of the sums is its own.
    void MoveTo(AggregateCell cell);

private:
    PrefixSums& prefixSums_;
    std::span<const std::size_t> summed_;
    std::optional<AggregateCell> last_;
};

/// Adds the same facts again in strips that leave a column of the word out, where these are far fewer.
/// Returns how many there are.
std::uint32_t AddCoarserAggregate(const AggregateTable::PackedKeyColumn& leftOut,
                                  std::span<const std::size_t> summed, PrefixSums& prefixSums);

} // namespace qel::engine
