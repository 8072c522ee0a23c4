#pragma once

#include "qel/engine/Cellset.h"
#include "qel/engine/Cube.h"

#include <string_view>

namespace qel::engine {

/// Parses the MDX statement, resolves its names in the cube and evaluates every cell. docs/mdx.md lists what
/// is understood. Raises EngineError: SyntaxError, UnknownCube, UnknownName, UnknownMember, InvalidExpression
/// or TooLarge with the place in the statement, DamagedFile.
Cellset RunStatement(const Cube& cube, std::string_view statement);

} // namespace qel::engine
