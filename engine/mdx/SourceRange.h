#pragma once

#include "qel/engine/EngineError.h"

#include <cstdint>
#include <string_view>

namespace qel::engine::mdx {

/// A range of bytes in a statement; errors point at one.
struct SourceRange {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
};

/// A text that is parsed: a statement, or the name or formula of a calculation of the cube.
struct Source {
    // Implicit: nearly every source is a statement.
    Source(std::string_view source) : text(source) {} // NOLINT(google-explicit-constructor)
    Source(std::string_view source, std::string_view calculation) : text(source), owner(calculation) {}

    std::string_view text;
    std::string_view owner; ///< the name of the calculation; empty for a statement
};

/// Raises an EngineError with the message "line 1, column 47: MESSAGE, near "excerpt"", behind the name of
/// the source's calculation, if any. Columns count characters, not bytes.
[[noreturn]] void RaiseAt(ErrorKind kind, const Source& source, SourceRange range, std::string_view message);

} // namespace qel::engine::mdx
