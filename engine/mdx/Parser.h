#pragma once

#include "engine/mdx/Ast.h"

namespace qel::engine::mdx {

/// Parses a SELECT statement. Raises EngineError: SyntaxError with the position and what was expected there,
/// or TooLarge for nesting or length beyond the limits.
Statement Parse(std::string_view statement);

/// Parses a text that is one expression: `parsed` gets its node and its depth.
Statement ParseText(const Source& text, Definition& parsed);

/// Parses a text that is the name of a calculated member or of a set: `parsed` gets its node.
Statement ParseName(const Source& text, Definition& parsed);

} // namespace qel::engine::mdx
