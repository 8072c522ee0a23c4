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

void JoinRanges(std::vector<KeyRange>& ranges) {
    std::sort(ranges.begin(), ranges.end(), [](KeyRange a, KeyRange b) { return a.first < b.first; });
    std::vector<KeyRange> joined;
    for (const KeyRange range : ranges) {
        if (!joined.empty() && range.first <= joined.back().last) {
            joined.back().last = std::max(joined.back().last, range.last);
        } else {
            joined.push_back(range);
        }
    }
    ranges = std::move(joined);
}

std::vector<KeyRange> Without(CodeRanges ranges, CodeRanges others) {
    std::vector<KeyRange> rest;
    std::size_t other = 0;
    for (KeyRange range : ranges) {
        while (other < others.size() && others[other].last <= range.first) {
            ++other;
        }
        for (std::size_t i = other; i < others.size() && others[i].first < range.last; ++i) {
            if (range.first < others[i].first) {
                rest.push_back({range.first, others[i].first});
            }
            range.first = std::max(range.first, others[i].last);
        }
        if (range.first < range.last) {
            rest.push_back(range);
        }
    }
    return rest;
}

} // namespace qel::engine
