#pragma once

#include <filesystem>
#include <string>

namespace qel::engine {

/// The path as UTF-8, for messages.
inline std::string PathToUtf8(const std::filesystem::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace qel::engine
