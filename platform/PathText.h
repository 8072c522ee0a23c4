#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qel {

/// A path from a setting's text: UTF-8, with "\" or "/" between the parts on every platform.
std::filesystem::path PathFromText(std::string_view text);
/// The path's UTF-8 text, in the platform's own form.
std::string TextFromPath(const std::filesystem::path& path);

/// What stands between the parts of the paths that the component makes.
#ifdef _WIN32
inline constexpr char pathSeparator = '\\';
#else
inline constexpr char pathSeparator = '/';
#endif

} // namespace qel
