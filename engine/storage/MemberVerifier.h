#pragma once

#include "qel/engine/Cube.h"

#include <string>

namespace qel::engine {

/// The first fault of the cube's members that would not harm a reader but give wrong answers, or an empty
/// text: texts that are not UTF-8, a member that its name or key does not find, a parent that lacks keys of
/// its children.
std::string FindMemberFault(const Cube& cube);

} // namespace qel::engine
