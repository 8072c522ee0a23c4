#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// A half-open range of a key column's codes.
struct KeyRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;

    std::uint32_t Count() const { return last - first; }
    bool operator==(const KeyRange&) const = default;
};

/// By the first code, then by the last.
inline bool IsBefore(KeyRange left, KeyRange right) {
    return left.first != right.first ? left.first < right.first : left.last < right.last;
}

/// A set of a key column's codes: ascending, disjoint, not adjacent ranges.
using CodeRanges = std::span<const KeyRange>;

std::uint64_t CountCodes(CodeRanges ranges);

/// Sorts ranges and joins adjacent ones. False when two of them share a code: a sum over them would count it
/// twice.
bool JoinDisjoint(std::vector<KeyRange>& ranges);

/// A half-open range of a projection's rows.
struct RowRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    std::uint64_t Count() const { return last - first; }
};

} // namespace qel::engine
