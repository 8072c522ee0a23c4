#pragma once

#include "engine/build/AggregateChoice.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

using RowNumbers = std::vector<std::uint32_t>;

/// Aggregates of one leading column whose sets of codes do not overlap: made in one pass over the facts.
struct AggregateLayer {
    std::optional<std::uint16_t> column;
    std::vector<KeyRange> sets; ///< as in an aggregate's key
    /// For every set, what is to be made of its facts.
    std::vector<std::vector<const ChosenAggregate*>> aggregates;
    std::map<std::uint32_t, std::uint32_t> taken; ///< the ranges of all sets

    bool IsFree(CodeRanges ranges) const;
    void Add(KeyRange set, CodeRanges ranges);
    /// Gives each of the rows to the set that its code lies in, in their order: the rows of set i start at
    /// place[i].
    RowNumbers Distribute(std::span<const std::uint32_t> rows, const std::vector<std::uint32_t>& codes,
                          const CodeGroups& groups, std::vector<std::size_t>& place) const;
};

/// Splits aggregates, which must outlive the layers, into few layers.
std::vector<AggregateLayer> MakeAggregateLayers(const std::vector<ChosenAggregate>& chosen,
                                                const CodeGroups& groups);

} // namespace qel::engine
