#pragma once

#include <string>
#include <string_view>

// Paths as the suite's settings hold them: UTF-8, separated by "\" or "/" on every platform.

namespace qel {

/// Removes trailing blanks and appends a separator unless there is one.
void AddBackslash(std::string& path);

/// The trimmed text without one surrounding pair of double quotes.
[[nodiscard]] std::string StripQuotes(std::string_view text);

/// True for a readable file; surrounding quotes and one trailing "\" are ignored. False for anything else,
/// including folders. Raises nothing.
[[nodiscard]] bool FileExists(std::string_view path);

/// True for a folder. Raises nothing.
[[nodiscard]] bool DirExists(std::string_view path);

/// Deletes the files, not folders, that match the path's last part, which may contain "*" and "?". Failures
/// are ignored. Raises nothing.
void DeleteFiles(std::string_view pattern);

} // namespace qel
