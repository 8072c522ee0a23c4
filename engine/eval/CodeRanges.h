#pragma once

#include "engine/storage/FactTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Only facts whose code in this key column is in the set.
struct Restriction {
    std::size_t keyColumn = 0;
    CodeRanges codes;
};

/// The restriction of that key column, of which there is at most one; null when there is none.
const Restriction* FindRestriction(std::span<const Restriction> restrictions, std::size_t keyColumn);

/// True when one of the restrictions lets no code through.
bool AnyIsEmpty(std::span<const Restriction> restrictions);

/// True when every code from 0 to codes-1 is in the set.
bool CoversAll(CodeRanges ranges, std::uint32_t codes);

/// True when the two sets share a code.
bool Intersects(CodeRanges left, CodeRanges right);

/// The codes in both sets, written to `result`, which neither may be a view of.
void Intersect(CodeRanges left, CodeRanges right, std::vector<KeyRange>& result);

/// Sorts ranges and joins those that touch or overlap.
void JoinRanges(std::vector<KeyRange>& ranges);

/// The codes of `ranges` that `others` lack; both sorted.
std::vector<KeyRange> Without(CodeRanges ranges, CodeRanges others);

} // namespace qel::engine
