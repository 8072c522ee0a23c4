#include "engine/build/AggregateLayers.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace qel::engine {

namespace {

/// Returns a dummy range for the aggregate over all facts.
CodeRanges LeadRanges(const ChosenAggregate& aggregate, const CodeGroups& groups) {
    return aggregate.lead ? groups.Ranges(aggregate.leadCodes) : CodeRanges(&aggregate.leadCodes, 1);
}

} // namespace

bool AggregateLayer::IsFree(CodeRanges ranges) const {
    return std::all_of(ranges.begin(), ranges.end(), [&](KeyRange range) {
        const auto behind = taken.lower_bound(range.last);
        return behind == taken.begin() || std::prev(behind)->second <= range.first;
    });
}

void AggregateLayer::Add(KeyRange set, CodeRanges ranges) {
    sets.push_back(set);
    aggregates.emplace_back();
    for (const KeyRange range : ranges) {
        taken.emplace(range.first, range.last);
    }
}

std::vector<std::uint32_t> AggregateLayer::SetOfCode(const CodeGroups& groups) const {
    std::vector<std::uint32_t> setOf(taken.rbegin()->second + std::size_t{1},
                                     static_cast<std::uint32_t>(sets.size()));
    for (std::uint32_t i = 0; i < sets.size(); ++i) {
        for (const KeyRange range : groups.Ranges(sets[i])) {
            std::fill(setOf.begin() + range.first, setOf.begin() + range.last, i);
        }
    }
    return setOf;
}

std::vector<AggregateLayer> MakeAggregateLayers(const std::vector<ChosenAggregate>& chosen,
                                                const CodeGroups& groups) {
    std::vector<const ChosenAggregate*> order;
    order.reserve(chosen.size());
    for (const ChosenAggregate& aggregate : chosen) {
        order.push_back(&aggregate);
    }
    // Sorts larger sets before the sets inside them, and keeps aggregates of the same set together.
    const auto place = [&](const ChosenAggregate* aggregate) {
        const CodeRanges ranges = LeadRanges(*aggregate, groups);
        return std::tuple(aggregate->lead, ranges.front().first, ~ranges.back().last,
                          aggregate->leadCodes.first, aggregate->leadCodes.last);
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](const ChosenAggregate* left, const ChosenAggregate* right) {
                         return place(left) < place(right);
                     });
    std::vector<AggregateLayer> layers;
    AggregateLayer* last = nullptr; // the layer that holds the previous set
    for (const ChosenAggregate* aggregate : order) {
        if (last == nullptr || last->column != aggregate->lead ||
            !(last->sets.back() == aggregate->leadCodes)) {
            const CodeRanges ranges = LeadRanges(*aggregate, groups);
            auto layer = std::find_if(layers.begin(), layers.end(), [&](const AggregateLayer& each) {
                return each.column == aggregate->lead && each.IsFree(ranges);
            });
            if (layer == layers.end()) {
                layer = layers.insert(layers.end(), AggregateLayer{aggregate->lead, {}, {}, {}});
            }
            layer->Add(aggregate->leadCodes, ranges);
            last = &*layer;
        }
        last->aggregates.back().push_back(aggregate);
    }
    return layers;
}

} // namespace qel::engine
