#include "platform/PathText.h"

namespace qel {

std::filesystem::path PathFromText(std::string_view text) {
    std::u8string path(text.begin(), text.end());
#ifndef _WIN32
    for (char8_t& c : path) {
        if (c == u8'\\')
            c = u8'/';
    }
#endif
    return path;
}

std::string TextFromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace qel
