#pragma once

#include "qel/engine/Cube.h"

#include <functional>
#include <string>

namespace qel::engine {

/// Reads every fact of the cube in every sort order and returns the first fault, or an empty text: a code out
/// of range, rows not in their order, orders that hold different facts, values whose sum may overflow.
/// `progress` is called with the rows read so far, over all orders. Raises EngineError (DamagedFile) for a
/// wrong page.
std::string FindFactFault(const Cube& cube, const std::function<void(std::uint64_t)>& progress);

} // namespace qel::engine
