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

/// Aggregates with the same leading column and disjoint sets of codes, so that one pass over the facts serves
/// all of them.
struct AggregateLayer {
    std::optional<std::uint16_t> column;
    std::vector<KeyRange> sets; ///< as in AggregateKey
    /// The aggregates to compute from each set's facts.
    std::vector<std::vector<const ChosenAggregate*>> aggregates;
    std::map<std::uint32_t, std::uint32_t> taken; ///< the ranges of all sets: first code to end

    bool IsFree(CodeRanges ranges) const;
    void Add(KeyRange set, CodeRanges ranges);
    /// Groups the rows by the set that their code belongs to, keeping their order: the rows of set i start at
    /// starts[i].
    RowNumbers Distribute(std::span<const std::uint32_t> rows, const std::vector<std::uint32_t>& codes,
                          const CodeGroups& groups, std::vector<std::size_t>& starts) const;
};

/// Splits aggregates into few layers. They must outlive the layers.
std::vector<AggregateLayer> MakeAggregateLayers(const std::vector<ChosenAggregate>& chosen,
                                                const CodeGroups& groups);

} // namespace qel::engine
