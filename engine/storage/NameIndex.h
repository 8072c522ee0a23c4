#pragma once

#include "text/CaseFold.h"

#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
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
    // Where a long search from a home slot ended: tens of thousands of members may have one name.
    std::unordered_map<std::size_t, std::size_t> ends;
    constexpr std::size_t longSearch = 64;
    for (std::uint32_t member = 0; member < count; ++member) {
        folded.clear();
        AppendFolded(nameOf(member), folded);
        const std::size_t home = NameHash(folded) & mask;
        const auto end = ends.empty() ? ends.end() : ends.find(home);
        std::size_t slot = end == ends.end() ? home : end->second;
        while (slots[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots[slot] = member + 1;
        if (((slot - home) & mask) > longSearch) {
            ends[home] = slot;
        }
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

/// Whether every member stands in one slot, where a search for its name finds it behind those of the same
/// name with lower numbers. Looks at every slot once: searches could take quadratic time.
template <class NameOf>
bool IsWholeNameIndex(std::span<const std::uint32_t> slots, std::uint32_t count, const NameOf& nameOf) {
    const auto free = std::find(slots.begin(), slots.end(), 0U);
    if (free == slots.end() || !std::has_single_bit(slots.size())) {
        return false;
    }
    const std::size_t mask = slots.size() - 1;
    const auto start = static_cast<std::size_t>(free - slots.begin()); // no search passes this slot
    std::size_t afterFree = 1; // the place behind the last free slot; places count from `start`
    std::uint32_t found = 0;
    std::unordered_map<std::uint64_t, std::uint32_t> last; // slot value by name
    for (std::size_t place = 1; place < slots.size(); ++place) {
        const std::uint32_t slot = slots[(start + place) & mask];
        if (slot == 0) {
            afterFree = place + 1;
            continue;
        }
        const std::uint64_t hash = slot <= count ? NameHash(FoldCase(nameOf(slot - 1))) : 0;
        const std::size_t home = (static_cast<std::size_t>(hash) - start) & mask;
        std::uint32_t& before = last[hash];
        if (slot > count || home < afterFree || home > place || slot <= before) {
            return false;
        }
        before = slot;
        ++found;
    }
    return found == count;
}

} // namespace qel::engine
