#pragma once

#include "engine/export/StarSchema.h"

#include <string>

namespace qel::engine {

/// The cube's schema file for a Mondrian 3 server over the star's tables. Raises EngineError
/// (InvalidExpression) for a cube that the server cannot have: hierarchies of one dimension over several fact
/// columns.
std::string ComposeMondrianSchema(const StarSchema& star);

} // namespace qel::engine
