#pragma once

#include "engine/storage/FactTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Restricts facts to those whose code in this key column is in the set.
struct Restriction {
    std::size_t keyColumn = 0;
    CodeRanges codes;
};

/// The restriction on that key column, or null. There is at most one per key column.
const Restriction* FindRestriction(std::span<const Restriction> restrictions, std::size_t keyColumn);

/// Whether any restriction is empty, so that no fact qualifies.
bool AnyIsEmpty(std::span<const Restriction> restrictions);

/// Whether the set contains every code from 0 to codes-1.
bool CoversAll(CodeRanges ranges, std::uint32_t codes);

/// Whether the two sets overlap.
bool Intersects(CodeRanges left, CodeRanges right);

/// Writes the intersection to `result`. Neither set may be a view of `result`.
void Intersect(CodeRanges left, CodeRanges right, std::vector<KeyRange>& result);

/// Sorts ranges and joins those that touch or overlap.
void JoinRanges(std::vector<KeyRange>& ranges);

/// The codes of `ranges` that `others` lack; both sorted.
std::vector<KeyRange> Without(CodeRanges ranges, CodeRanges others);

} // namespace qel::engine
