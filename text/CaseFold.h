#pragma once

#include <string>
#include <string_view>

namespace qel {

/// UTF-8 text with every cased letter of the Latin, Greek and Cyrillic blocks in lower case; Hebrew has no
/// case, and bytes that are not UTF-8 stay as they are. Two names are the same name when their folded texts
/// are equal.
std::string FoldCase(std::string_view text);

/// Appends the folded text to `folded`; for callers that reuse one buffer.
void AppendFolded(std::string_view text, std::string& folded);

bool EqualIgnoringCase(std::string_view left, std::string_view right);

/// True for text that is well-formed UTF-8 (no overlong forms, no surrogates).
bool IsValidUtf8(std::string_view text);

} // namespace qel
