#include "engine/eval/CodeRanges.h"

#include <algorithm>

namespace qel::engine {

namespace {

/// Calls visit(range) for every overlap of two ranges, until it returns false.
template <class Visit>
void VisitOverlaps(CodeRanges left, CodeRanges right, const Visit& visit) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < left.size() && j < right.size()) {
        const KeyRange common{std::max(left[i].first, right[j].first), std::min(left[i].last, right[j].last)};
        if (common.first < common.last && !visit(common)) {
            return;
        }
        if (left[i].last < right[j].last) {
            ++i;
        } else {
            ++j;
        }
    }
}

} // namespace

const Restriction* FindRestriction(std::span<const Restriction> restrictions, std::size_t keyColumn) {
    const auto found = std::find_if(restrictions.begin(), restrictions.end(), [&](const auto& restriction) {
        return restriction.keyColumn == keyColumn;
    });
    return found == restrictions.end() ? nullptr : &*found;
}

bool AnyIsEmpty(std::span<const Restriction> restrictions) {
    return std::any_of(restrictions.begin(), restrictions.end(),
                       [](const Restriction& restriction) { return restriction.codes.empty(); });
}

bool CoversAll(CodeRanges ranges, std::uint32_t codes) {
    return ranges.size() == 1 && ranges[0].first == 0 && ranges[0].last == codes;
}

bool Intersects(CodeRanges left, CodeRanges right) {
    bool found = false;
    VisitOverlaps(left, right, [&](KeyRange) {
        found = true;
        return false;
    });
    return found;
}

void Intersect(CodeRanges left, CodeRanges right, std::vector<KeyRange>& result) {
    result.clear();
    VisitOverlaps(left, right, [&](KeyRange common) {
        result.push_back(common);
        return true;
    });
}

} // namespace qel::engine
