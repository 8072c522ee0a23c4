#include "engine/eval/BlockFilter.h"

#include "engine/eval/CodeColumn.h"

#include <algorithm>

namespace qel::engine {

namespace {

/// Up to here comparing with every range beats looking the code up.
constexpr std::size_t comparedRanges = 4;

template <class Code>
void KeepRange(const std::byte* codes, std::size_t count, KeyRange range, std::uint8_t* mask) {
    const auto first = static_cast<Code>(range.first);
    // Codes below `first` wrap around to large numbers, so one comparison tests both ends.
    const auto span = static_cast<Code>(range.last - range.first - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const auto distance = static_cast<Code>(ReadAt<Code>(codes, i) - first);
        mask[i] &= static_cast<std::uint8_t>(distance <= span);
    }
}

template <class Code>
void KeepRanges(const std::byte* codes, std::size_t count, CodeRanges ranges, std::uint8_t* mask) {
    BlockMask isIn{};
    for (const KeyRange range : ranges) {
        const auto first = static_cast<Code>(range.first);
        const auto span = static_cast<Code>(range.last - range.first - 1);
        for (std::size_t i = 0; i < count; ++i) {
            const auto distance = static_cast<Code>(ReadAt<Code>(codes, i) - first);
            isIn[i] |= static_cast<std::uint8_t>(distance <= span);
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        mask[i] &= isIn[i];
    }
}

template <class Code>
void KeepListed(const std::byte* codes, std::size_t count, const std::vector<std::uint8_t>& isIn,
                std::uint8_t* mask) {
    for (std::size_t i = 0; i < count; ++i) {
        // A code comes from the file and is not trusted to lie within the table.
        const std::size_t code = ReadAt<Code>(codes, i);
        mask[i] &= code < isIn.size() ? isIn[code] : std::uint8_t{0};
    }
}

} // namespace

BlockFilter::BlockFilter(const Restriction& restriction, const KeyColumn& column)
    : restriction_(restriction), width_(column.width) {
    if (restriction.codes.size() <= comparedRanges) {
        return;
    }
    isIn_.resize(column.codes);
    for (const KeyRange range : restriction.codes) {
        std::fill(isIn_.begin() + range.first, isIn_.begin() + range.last, std::uint8_t{1});
    }
}

void BlockFilter::Apply(const std::byte* codes, std::size_t count, BlockMask& mask) const {
    VisitCodeType(width_, [&](auto type) {
        using Code = decltype(type);
        if (!isIn_.empty()) {
            KeepListed<Code>(codes, count, isIn_, mask.data());
        } else if (restriction_.codes.size() == 1) {
            KeepRange<Code>(codes, count, restriction_.codes[0], mask.data());
        } else {
            KeepRanges<Code>(codes, count, restriction_.codes, mask.data());
        }
    });
}

} // namespace qel::engine
