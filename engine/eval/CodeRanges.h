#pragma once

#include "engine/storage/FactTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// A set of a key column's codes: ascending, disjoint, not adjacent ranges.
using CodeRanges = std::span<const KeyRange>;

/// Only facts whose code in this key column is in the set.
struct Restriction {
    std::size_t keyColumn = 0;
    CodeRanges codes;
};

std::uint64_t CountCodes(CodeRanges ranges);

/// True when every code from 0 to codes-1 is in the set.
bool CoversAll(CodeRanges ranges, std::uint32_t codes);

/// True when the two sets share a code.
bool Intersects(CodeRanges left, CodeRanges right);

/// The codes in both sets, written to `result`, which neither may be a view of.
void Intersect(CodeRanges left, CodeRanges right, std::vector<KeyRange>& result);

/// Sorts ranges and joins adjacent ones. False when two of them share a code: a sum over them would count it
/// twice.
bool JoinDisjoint(std::vector<KeyRange>& ranges);

} // namespace qel::engine
