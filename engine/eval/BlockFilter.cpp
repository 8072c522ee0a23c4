#include "engine/eval/BlockFilter.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

BlockFilter::BlockFilter(const Restriction& restriction, const KeyColumn& column)
    : slot_(column.slot), width_(column.width), shift_(column.shift), bits_(column.Mask()) {
    if (restriction.codes.size() == 1) {
        first_ = restriction.codes[0].first << shift_;
        last_ = (restriction.codes[0].last - 1) << shift_;
        return;
    }
    isIn_.resize(column.codes);
    for (const KeyRange range : restriction.codes) {
        std::fill(isIn_.begin() + range.first, isIn_.begin() + range.last, std::uint8_t{1});
    }
}

bool BlockFilter::Merge(const BlockFilter& other) {
    const bool bothOneCode =
        isIn_.empty() && other.isIn_.empty() && first_ == last_ && other.first_ == other.last_;
    if (slot_ != other.slot_ || !bothOneCode) {
        return false;
    }
    bits_ |= other.bits_;
    first_ |= other.first_;
    last_ = first_;
    return true;
}

void BlockFilter::Apply(const std::byte* slots, std::size_t count, BlockMask& mask) const {
    const SlotBlock block{slots, width_, count};
    if (isIn_.empty()) {
        KeepBetween(block, bits_, first_, last_, mask);
    } else {
        KeepListed(block, bits_, shift_, isIn_, mask);
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
