#pragma once

#include "engine/export/StarSchema.h"

#include <string>

namespace qel::engine {

/// The cube's schema for a Mondrian 3 server over the star's tables. Raises EngineError (InvalidExpression)
/// for a cube that Mondrian cannot describe: hierarchies of one dimension over several fact columns.
std::string ComposeMondrianSchema(const StarSchema& star);

} // namespace qel::engine
