#include "engine/eval/BlockFilter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qel::engine {

BlockFilter::BlockFilter(const Restriction& restriction, const KeyColumn& column)
    : packedColumn_(column.packedColumn), width_(column.width), shift_(column.shift), bits_(column.Mask()) {
    const std::size_t fewRanges =
        16U / width_; // comparing with this many ranges is faster than a table lookup
    const auto spanOf = [&](KeyRange range) {
        return PackedSpan{range.first << shift_, (range.last - 1) << shift_};
    };
    if (restriction.codes.size() == 1) {
        span_ = spanOf(restriction.codes[0]);
        return;
    }
    Set set;
    if (restriction.codes.size() <= fewRanges) {
        std::transform(restriction.codes.begin(), restriction.codes.end(), std::back_inserter(set.spans),
                       spanOf);
    } else {
        set.isIn.resize(column.codes);
        for (const KeyRange range : restriction.codes) {
            std::fill(set.isIn.begin() + range.first, set.isIn.begin() + range.last, std::uint8_t{1});
        }
    }
    set_ = std::make_shared<const Set>(std::move(set));
}

bool BlockFilter::Merge(const BlockFilter& other) {
    if (packedColumn_ != other.packedColumn_ || !IsOneCode() || !other.IsOneCode()) {
        return false;
    }
    bits_ |= other.bits_;
    span_.first |= other.span_.first;
    span_.last = span_.first;
    return true;
}

void BlockFilter::Mark(const std::byte* packed, std::size_t count, BlockMask& mask) const {
    if (set_ == nullptr) {
        MarkBetween({packed, width_, count}, bits_, span_, mask);
        return;
    }
    std::fill_n(mask.begin(), count, std::uint8_t{1});
    Apply(packed, count, mask);
}

void BlockFilter::Apply(const std::byte* packed, std::size_t count, BlockMask& mask) const {
    const PackedBlock block{packed, width_, count};
    if (set_ == nullptr) {
        KeepBetween(block, bits_, span_, mask);
    } else if (!set_->spans.empty()) {
        KeepBetweenAny(block, bits_, set_->spans, mask);
    } else {
        KeepListed(block, bits_, shift_, set_->isIn, mask);
    }
}

std::size_t BlockFilter::OwnedBytes() const {
    return set_ == nullptr
               ? 0
               : sizeof *set_ + set_->spans.capacity() * sizeof(PackedSpan) + set_->isIn.capacity();
}

void AddFilter(BlockFilter filter, std::vector<BlockFilter>& filters) {
    const bool isMerged =
        std::any_of(filters.begin(), filters.end(), [&](BlockFilter& other) { return other.Merge(filter); });
    if (!isMerged) {
        filters.push_back(std::move(filter));
    }
}

std::size_t BytesOf(std::span<const BlockFilter> filters) {
    std::size_t bytes = 0;
    for (const BlockFilter& filter : filters) {
        bytes += sizeof filter + filter.OwnedBytes();
    }
    return bytes;
}

std::vector<BlockFilter> MakeFilters(const FactTable& facts, std::span<const Restriction> restrictions) {
    std::vector<BlockFilter> filters;
    filters.reserve(restrictions.size());
    for (const Restriction& restriction : restrictions) {
        AddFilter(BlockFilter(restriction, facts.KeyColumns()[restriction.keyColumn]), filters);
    }
    return filters;
}

} // namespace qel::engine
