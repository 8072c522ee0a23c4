#pragma once

#include "qel/engine/Cube.h"

#include <functional>
#include <string>

namespace qel::engine {

/// Reads every fact of the cube in every sort order and returns the first fault, or an empty text: a code out
/// of range, rows out of order, sort orders with different facts, values whose sum may overflow. `progress`
/// is called with the number of rows read so far, over all sort orders. Raises EngineError (DamagedFile) when
/// a page fails its checksum.
std::string FindFactFault(const Cube& cube, const std::function<void(std::uint64_t)>& progress);

} // namespace qel::engine
