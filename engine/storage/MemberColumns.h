#pragma once

#include "engine/storage/Ranges.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace qel::engine {

/// The stored columns of a hierarchy's members; spans point to what the file keeps in memory and were checked
/// when it was opened.
struct MemberColumns {
    std::span<const std::uint32_t> nameOffsets, captionOffsets,
        keyOffsets; ///< one more than there are members
    std::string_view names, captions, keys;
    std::span<const MemberId> parents;           ///< noMember at the top level
    std::span<const std::uint32_t> firstChild;   ///< one more than there are members; absolute member numbers
    std::span<const std::uint32_t> rangeOffsets; ///< one more than there are members
    std::span<const KeyRange> ranges;
    std::span<const std::uint32_t> nameSlots,
        keySlots;                        ///< open-addressing tables of member number + 1, see NameIndex.h
    std::span<const std::uint8_t> flags; ///< see format::nameIsShared
};

} // namespace qel::engine
