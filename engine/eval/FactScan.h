#pragma once

#include "engine/eval/CodeRanges.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// True when there is a fact under all restrictions (at most one a key column); stops at the first. Raises
/// EngineError (DamagedFile), as does MarkCodes.
bool AnyFact(const FactTable& facts, std::span<const Restriction> restrictions);

/// marks[code] = 1 for every code of the key column that a fact under all restrictions has. `marks` has an
/// element for every code of the column.
void MarkCodes(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t keyColumn,
               std::vector<std::uint8_t>& marks);

} // namespace qel::engine
