#include "engine/build/TextFile.h"

#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <iterator>
#include <system_error>

namespace qel::engine {

std::ifstream OpenTextFile(const std::filesystem::path& path) {
    const auto fail = [&path](const std::string& fault) {
        throw EngineError(ErrorKind::FileNotFound, fmt::format("{}: {}", PathToUtf8(path), fault));
    };
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        fail(error ? error.message() : "no such file");
    }
    if (std::filesystem::is_directory(status)) {
        fail("is a folder, not a file");
    }
    if (!std::filesystem::is_regular_file(status)) {
        fail("is not a regular file");
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        fail(std::generic_category().message(errno));
    }
    return file;
}

std::string ReadTextFile(const std::filesystem::path& path) {
    std::ifstream file = OpenTextFile(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace qel::engine
