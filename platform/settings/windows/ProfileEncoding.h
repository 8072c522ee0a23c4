#pragma once

#include <string>

namespace qel::windows {

/// Makes a profile file hold UTF-16 when the system's code page, in which profile files are kept, lacks a
/// letter of `text`. Otherwise, and when the file cannot be rewritten, it stays as it is.
void MakeRoomFor(const std::wstring& text, const std::wstring& file);

} // namespace qel::windows
