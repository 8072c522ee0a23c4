#pragma once

#include "engine/build/RollupChoice.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

using RowNumbers = std::vector<std::uint32_t>;

/// Rollups of one leading column whose sets of codes do not overlap: made in one pass over the facts.
struct RollupLayer {
    std::optional<std::uint16_t> column;
    std::vector<KeyRange> sets; ///< as in a rollup's key
    /// For every set, what is to be made of its facts.
    std::vector<std::vector<const ChosenRollup*>> rollups;
    std::map<std::uint32_t, std::uint32_t> taken; ///< the ranges of all sets

    bool IsFree(CodeRanges ranges) const;
    void Add(KeyRange set, CodeRanges ranges);
    /// Gives each of the rows to the set that its code lies in, in their order: the rows of set i start at
    /// place[i].
    RowNumbers Distribute(std::span<const std::uint32_t> rows, const std::vector<std::uint32_t>& codes,
                          const CodeGroups& groups, std::vector<std::size_t>& place) const;
};

/// Splits rollups, which must outlive the layers, into few layers.
std::vector<RollupLayer> MakeRollupLayers(const std::vector<ChosenRollup>& chosen, const CodeGroups& groups);

} // namespace qel::engine
