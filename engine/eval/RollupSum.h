#pragma once

#include "engine/eval/FactScan.h"

namespace qel::engine {

/// Sums the facts under the restrictions, none of which is empty, from rollups, and from facts what these do
/// not hold. Returns false when no rollup helps. The cube has rollups. Raises EngineError (DamagedFile).
bool SumRollups(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                FactSum& total);

} // namespace qel::engine
