#include "engine/storage/CodeGroups.h"

#include <algorithm>

namespace qel::engine {

std::span<const KeyRange> CodeGroups::Ranges(const KeyRange& codes) const {
    if (!IsGroup(codes)) {
        return {&codes, 1};
    }
    return codes.first < Count() ? At(codes.first) : std::span<const KeyRange>();
}

std::optional<KeyRange> CodeGroups::Find(std::span<const KeyRange> ranges) const {
    std::size_t first = 0, last = Count();
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        const std::span<const KeyRange> group = At(middle);
        if (std::lexicographical_compare(group.begin(), group.end(), ranges.begin(), ranges.end(),
                                         IsBefore)) {
            first = middle + 1;
        } else {
            last = middle;
        }
    }
    if (first == Count() || !std::equal(ranges.begin(), ranges.end(), At(first).begin(), At(first).end())) {
        return std::nullopt;
    }
    return KeyRange{static_cast<std::uint32_t>(first), 0};
}

} // namespace qel::engine
