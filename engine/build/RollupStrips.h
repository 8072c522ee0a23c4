#pragma once

#include "engine/storage/RollupTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

/// A strip's word, and a granule of time.
struct StripPlace {
    std::uint32_t word = 0, granule = 0;

    bool operator==(const StripPlace&) const = default;
};

/// The strips of one rollup, as RollupTable explains them.
struct RollupStrips {
    std::vector<std::uint32_t> words, firstEntries;
    std::vector<std::uint64_t> periods;
    std::vector<std::vector<std::int64_t>> sums; ///< running, by measure
    std::vector<std::uint32_t> counts;           ///< running
};

/// Writes strips behind those that are there, entry by entry, by word and granule.
class StripWriter {
public:
    /// `summed` are the measures that are summed; the others count.
    StripWriter(RollupStrips& strips, std::span<const std::size_t> summed)
        : strips_(strips), summed_(summed) {}

    /// Goes on with the entry of that place, which is the last one or behind it: the last of the counts and
    /// of the sums is its own.
    void MoveTo(StripPlace place);

private:
    RollupStrips& strips_;
    std::span<const std::size_t> summed_;
    std::optional<StripPlace> last_;
};

/// Adds the same facts again in strips that leave a column of the word out, where these are far fewer.
/// Returns how many there are.
std::uint32_t MergeStrips(const RollupTable::WordColumn& left, std::span<const std::size_t> summed,
                          RollupStrips& strips);

} // namespace qel::engine
