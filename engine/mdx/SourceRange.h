#pragma once

#include "qel/engine/EngineError.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::engine::mdx {

/// A run of a statement's bytes; what an error points at.
struct SourceRange {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
};

/// A name as statements write it: in brackets, with "]" doubled.
std::string Bracketed(std::string_view name);

/// Raises an EngineError whose message reads "line 1, column 47: MESSAGE, near "excerpt"". Columns count
/// characters, not bytes.
[[noreturn]] void RaiseAt(ErrorKind kind, std::string_view statement, SourceRange range,
                          std::string_view message);

} // namespace qel::engine::mdx
