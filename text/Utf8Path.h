#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qel {

std::filesystem::path PathFromUtf8(std::string_view text);
/// The path of a setting or of a cube file, which has "\" or "/" between the parts on every platform.
std::filesystem::path PathFromSetting(std::string_view text);
/// The path's UTF-8 text, in the platform's own form.
std::string PathToUtf8(const std::filesystem::path& path);

/// What stands between the parts of the paths that the component makes.
#ifdef _WIN32
inline constexpr char pathSeparator = '\\';
#else
inline constexpr char pathSeparator = '/';
#endif

} // namespace qel
