#pragma once

#include "engine/build/AggregateChoice.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace qel::engine {

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
    /// The number of the set that each code belongs to; codes outside all ranges get the number behind the
    /// last set. The last element is for all higher codes.
    std::vector<std::uint32_t> SetOfCode(const CodeGroups& groups) const;
};

/// Splits aggregates into few layers. They must outlive the layers.
std::vector<AggregateLayer> MakeAggregateLayers(const std::vector<ChosenAggregate>& chosen,
                                                const CodeGroups& groups);

} // namespace qel::engine
