#pragma once

#include "qel/engine/Cube.h"

#include <string>

namespace qel::engine {

/// Returns the first fault in a cube's aggregates, or an empty text. Every aggregate must be found by its
/// key, be sorted, and agree with its facts in every packed key and time bucket; all of them together must
/// not hold more facts than the format allows. Raises EngineError (DamagedFile) when a page fails its
/// checksum.
std::string FindAggregateFault(const Cube& cube);

} // namespace qel::engine
