#pragma once

#include <string>
#include <string_view>

// Paths as the suite's settings hold them: UTF-8, with "\" or "/" between the parts, on every platform.

namespace qel {

/// Removes the blanks at the end and makes the path end in a separator.
void AddBackslash(std::string& path);

/// The text without the blanks and one pair of double quotes around it.
std::string StripQuotes(std::string_view text);

/// True for a file that can be read; quotes around the path and one "\" at its end are ignored. False for
/// anything else, a folder included. Raises nothing.
bool FileExists(std::string_view path);

/// True for a folder. Raises nothing.
bool DirExists(std::string_view path);

/// Deletes the files, never folders, whose name matches the path's last part, which may hold "*" and "?".
/// What cannot be deleted stays. Raises nothing.
void DeleteFiles(std::string_view pattern);

} // namespace qel
