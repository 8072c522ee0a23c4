#pragma once

#include "engine/mdx/Ast.h"

namespace qel::engine::mdx {

/// Parses one SELECT statement. Raises EngineError: SyntaxError naming the place and what was expected there,
/// TooLarge for a nesting or a length beyond the limits.
Statement Parse(std::string_view statement);

} // namespace qel::engine::mdx
