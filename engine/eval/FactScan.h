#pragma once

#include "engine/eval/CodeRanges.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Whether any fact satisfies all restrictions (at most one per key column). Stops at the first. Raises
/// EngineError (DamagedFile), as does MarkCodes.
bool AnyFact(const FactTable& facts, std::span<const Restriction> restrictions);

/// Sets marks[code] = 1 for every code of the key column that occurs in a fact under all restrictions.
/// `marks` has one element per code of the column.
void MarkCodes(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t keyColumn,
               std::vector<std::uint8_t>& marks);

} // namespace qel::engine
