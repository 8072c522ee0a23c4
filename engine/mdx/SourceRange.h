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

/// Raises an EngineError with the message "line 1, column 47: MESSAGE, near "excerpt"". Columns count
/// characters, not bytes.
[[noreturn]] void RaiseAt(ErrorKind kind, std::string_view statement, SourceRange range,
                          std::string_view message);

} // namespace qel::engine::mdx
