#pragma once

#include "engine/export/FlatStar.h"

#include <string>

namespace qel::engine {

/// The cube's schema for a Mondrian 3 server over the star's tables. Raises EngineError (InvalidExpression)
/// for a cube that Mondrian cannot describe: hierarchies of one dimension over several fact columns. `flat`
/// is null unless the star is spread over shards.
std::string ComposeMondrianSchema(const StarSchema& star, const FlatStar* flat);

} // namespace qel::engine
