#include "engine/build/RollupLayers.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

namespace qel::engine {

namespace {

/// Of the rollup of all facts, one range that nothing is asked of.
CodeRanges LeadRanges(const ChosenRollup& rollup, const CodeGroups& groups) {
    return rollup.lead ? groups.Ranges(rollup.leadCodes) : CodeRanges(&rollup.leadCodes, 1);
}

} // namespace

bool RollupLayer::IsFree(CodeRanges ranges) const {
    return std::all_of(ranges.begin(), ranges.end(), [&](KeyRange range) {
        const auto behind = taken.lower_bound(range.last);
        return behind == taken.begin() || std::prev(behind)->second <= range.first;
    });
}

void RollupLayer::Add(KeyRange set, CodeRanges ranges) {
    sets.push_back(set);
    rollups.emplace_back();
    for (const KeyRange range : ranges) {
        taken.emplace(range.first, range.last);
    }
}

RowNumbers RollupLayer::Distribute(std::span<const std::uint32_t> rows,
                                   const std::vector<std::uint32_t>& codes, const CodeGroups& groups,
                                   std::vector<std::size_t>& place) const {
    // Codes behind the last range belong to no set, as those between ranges do.
    std::vector<std::uint32_t> setOf(taken.rbegin()->second + std::size_t{1},
                                     static_cast<std::uint32_t>(sets.size()));
    for (std::uint32_t i = 0; i < sets.size(); ++i) {
        for (const KeyRange range : groups.Ranges(sets[i])) {
            std::fill(setOf.begin() + range.first, setOf.begin() + range.last, i);
        }
    }
    const auto setAt = [&](std::uint32_t row) {
        return setOf[std::min<std::size_t>(codes[row], setOf.size() - 1)];
    };
    place.assign(sets.size() + 2, 0);
    for (const std::uint32_t row : rows) {
        ++place[setAt(row) + std::size_t{1}];
    }
    std::partial_sum(place.begin(), place.end(), place.begin());
    RowNumbers distributed(rows.size());
    std::vector<std::size_t> next = place;
    for (const std::uint32_t row : rows) {
        distributed[next[setAt(row)]++] = row;
    }
    return distributed;
}

std::vector<RollupLayer> MakeRollupLayers(const std::vector<ChosenRollup>& chosen, const CodeGroups& groups) {
    std::vector<const ChosenRollup*> order;
    order.reserve(chosen.size());
    for (const ChosenRollup& rollup : chosen) {
        order.push_back(&rollup);
    }
    // Large sets before those inside them, and one set's rollups together.
    const auto place = [&](const ChosenRollup* rollup) {
        const CodeRanges ranges = LeadRanges(*rollup, groups);
        return std::tuple(rollup->lead, ranges.front().first, ~ranges.back().last, rollup->leadCodes.first,
                          rollup->leadCodes.last);
    };
    std::stable_sort(order.begin(), order.end(), [&](const ChosenRollup* left, const ChosenRollup* right) {
        return place(left) < place(right);
    });
    std::vector<RollupLayer> layers;
    RollupLayer* last = nullptr; // that a set was put into
    for (const ChosenRollup* rollup : order) {
        if (last == nullptr || last->column != rollup->lead || !(last->sets.back() == rollup->leadCodes)) {
            const CodeRanges ranges = LeadRanges(*rollup, groups);
            auto layer = std::find_if(layers.begin(), layers.end(), [&](const RollupLayer& each) {
                return each.column == rollup->lead && each.IsFree(ranges);
            });
            if (layer == layers.end()) {
                layer = layers.insert(layers.end(), RollupLayer{rollup->lead, {}, {}, {}});
            }
            layer->Add(rollup->leadCodes, ranges);
            last = &*layer;
        }
        last->rollups.back().push_back(rollup);
    }
    return layers;
}

} // namespace qel::engine
