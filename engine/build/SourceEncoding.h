#pragma once

#include <filesystem>
#include <string>

namespace qel::engine {

/// The encoding of a text file, as a definition names it: "auto" for UTF-8 and for UTF-16 with its mark,
/// otherwise "windows-1255" when its letters look like Hebrew, "windows-1252" when not.
std::string DetectEncoding(const std::filesystem::path& path);

} // namespace qel::engine
