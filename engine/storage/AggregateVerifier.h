#pragma once

#include "qel/engine/Cube.h"

#include <string>

namespace qel::engine {

/// The first fault among a cube's aggregates, or an empty text: each must be found by its key, be in order,
/// and have the sums of its facts for every word and period. Raises EngineError (DamagedFile) for a page that
/// is not as it was written.
std::string FindAggregateFault(const Cube& cube);

} // namespace qel::engine
