#include "text/Utf8Path.h"

#include <algorithm>

namespace qel {

std::filesystem::path PathFromUtf8(std::string_view text) { return std::u8string(text.begin(), text.end()); }

std::filesystem::path PathFromSetting(std::string_view text) {
    std::u8string path(text.begin(), text.end());
#ifndef _WIN32
    std::replace(path.begin(), path.end(), u8'\\', u8'/');
#endif
    return path;
}

std::string PathToUtf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace qel
