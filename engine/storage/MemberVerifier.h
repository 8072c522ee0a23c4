#pragma once

#include "qel/engine/Cube.h"

#include <string>

namespace qel::engine {

/// Returns the first fault in the cube's members, or an empty text. Looks for faults that do not endanger a
/// reader but give wrong answers: texts that are not UTF-8, a member that its name or key does not find, a
/// parent that lacks codes of its children.
std::string FindMemberFault(const Cube& cube);

} // namespace qel::engine
