#include "engine/eval/BlockFilter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qel::engine {

BlockFilter::BlockFilter(const Restriction& restriction, const KeyColumn& column)
    : slot_(column.slot), width_(column.width), shift_(column.shift), bits_(column.Mask()) {
    const std::size_t fewRanges = 16U / width_; // are compared in less time than codes are looked up
    const auto spanOf = [&](KeyRange range) {
        return SlotSpan{range.first << shift_, (range.last - 1) << shift_};
    };
    if (restriction.codes.size() == 1) {
        span_ = spanOf(restriction.codes[0]);
    } else if (restriction.codes.size() <= fewRanges) {
        std::transform(restriction.codes.begin(), restriction.codes.end(), std::back_inserter(spans_),
                       spanOf);
    } else {
        isIn_.resize(column.codes);
        for (const KeyRange range : restriction.codes) {
            std::fill(isIn_.begin() + range.first, isIn_.begin() + range.last, std::uint8_t{1});
        }
    }
}

bool BlockFilter::Merge(const BlockFilter& other) {
    if (slot_ != other.slot_ || !IsOneCode() || !other.IsOneCode()) {
        return false;
    }
    bits_ |= other.bits_;
    span_.first |= other.span_.first;
    span_.last = span_.first;
    return true;
}

void BlockFilter::Apply(const std::byte* slots, std::size_t count, BlockMask& mask) const {
    const SlotBlock block{slots, width_, count};
    if (!isIn_.empty()) {
        KeepListed(block, bits_, shift_, isIn_, mask);
    } else if (!spans_.empty()) {
        KeepBetweenAny(block, bits_, spans_, mask);
    } else {
        KeepBetween(block, bits_, span_, mask);
    }
}

std::vector<BlockFilter> MakeFilters(const FactTable& facts, std::span<const Restriction> restrictions) {
    std::vector<BlockFilter> filters;
    filters.reserve(restrictions.size());
    for (const Restriction& restriction : restrictions) {
        BlockFilter filter(restriction, facts.KeyColumns()[restriction.keyColumn]);
        const bool isMerged = std::any_of(filters.begin(), filters.end(),
                                          [&](BlockFilter& other) { return other.Merge(filter); });
        if (!isMerged) {
            filters.push_back(std::move(filter));
        }
    }
    return filters;
}

} // namespace qel::engine
