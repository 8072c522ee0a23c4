#pragma once

#include "text/CaseFold.h"

#include <xxhash.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A stored hash table from names to members, so that opening builds nothing: open addressing with linear
// probing over a power of two of slots. A slot holds 0 when free, otherwise a member's number plus one. The
// home slot is given by the low bits of the XXH3-64 of the lower-case name.

namespace qel::engine {

inline std::uint64_t NameHash(std::string_view foldedName) {
    return XXH3_64bits(foldedName.data(), foldedName.size());
}

/// `nameOf(member)` gives the name of members 0 .. count-1. At least one slot stays free.
template <class NameOf>
std::vector<std::uint32_t> BuildNameIndex(std::uint32_t count, const NameOf& nameOf) {
    std::vector<std::uint32_t> slots(std::bit_ceil(std::size_t{count} * 2 + 1));
    const std::size_t mask = slots.size() - 1;
    std::string folded;
    for (std::uint32_t member = 0; member < count; ++member) {
        folded.clear();
        AppendFolded(nameOf(member), folded);
        std::size_t slot = NameHash(folded) & mask;
        while (slots[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots[slot] = member + 1;
    }
    return slots;
}

/// Calls `found(member)` for every member of that name (any letter case), in ascending order.
template <class NameOf, class Found>
void FindInNameIndex(std::span<const std::uint32_t> slots, std::string_view name, const NameOf& nameOf,
                     const Found& found) {
    const std::string folded = FoldCase(name);
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = NameHash(folded) & mask;
    for (; slots[slot] != 0; slot = (slot + 1) & mask) {
        const std::uint32_t member = slots[slot] - 1;
        if (EqualIgnoringCase(nameOf(member), name)) {
            found(member);
        }
    }
}

} // namespace qel::engine
