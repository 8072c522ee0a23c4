#pragma once

#include "engine/eval/FactReading.h"

namespace qel::engine {

/// What strips of rollups may be read for at the ends of a span of time.
enum class StripEnds {
    Within, ///< what lies in the span
    Nearest ///< more than that, where the facts that are too many are fewer than those that would lack
};

/// Adds to `reading` how to read the facts under the restrictions, none of which is empty, from rollups, and
/// from facts what these do not hold. Returns false, with nothing added, when no rollup helps. The cube has
/// rollups. Raises EngineError (DamagedFile).
bool PlanRollups(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                 StripEnds ends, FactReading& reading);

} // namespace qel::engine
