#pragma once

#include "engine/eval/FactReading.h"

namespace qel::engine {

/// Adds to `reading` how to read the facts under the restrictions, none of which is empty, from rollups, and
/// from facts what these do not hold. Returns false, with nothing added, when no rollup helps. The cube has
/// rollups. Raises EngineError (DamagedFile).
bool PlanRollups(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                 StripEnds ends, FactReading& reading);

} // namespace qel::engine
