#include "engine/storage/Ranges.h"

#include <algorithm>

namespace qel::engine {

std::uint64_t CountCodes(CodeRanges ranges) {
    std::uint64_t count = 0;
    for (const KeyRange range : ranges) {
        count += range.last - range.first;
    }
    return count;
}

bool JoinDisjoint(std::vector<KeyRange>& ranges) {
    std::sort(ranges.begin(), ranges.end(), IsBefore);
    std::size_t kept = 0;
    for (const KeyRange range : ranges) {
        if (kept > 0 && range.first < ranges[kept - 1].last) {
            return false;
        }
        if (kept > 0 && range.first == ranges[kept - 1].last) {
            ranges[kept - 1].last = range.last;
        } else {
            ranges[kept++] = range;
        }
    }
    ranges.resize(kept);
    return true;
}

} // namespace qel::engine
