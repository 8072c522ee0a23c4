#pragma once

#include "engine/mdx/Ast.h"

namespace qel::engine::mdx {

/// Parses a SELECT statement. Raises EngineError: SyntaxError with the position and what was expected there,
/// or TooLarge for nesting or length beyond the limits.
Statement Parse(std::string_view statement);

/// Parses a text that is one expression; `root` is its node.
Statement ParseText(std::string_view text, NodeId& root);

} // namespace qel::engine::mdx
