#pragma once

#include <string>

namespace qel::windows {

/// Converts a profile file from the system's code page to UTF-16 when the code page lacks a letter of `text`.
/// The file is unchanged otherwise, and when it cannot be rewritten.
void MakeRoomFor(const std::wstring& text, const std::wstring& file);

} // namespace qel::windows
