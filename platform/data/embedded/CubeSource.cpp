#include "platform/data/embedded/CubeSource.h"

#include "platform/data/ConnectionText.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/CubeFile.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <fstream>

namespace qel {

namespace {

constexpr const char* whatCanBeOpened = "A cube file made by 'qel cube build' can be opened.";

AutomationError CannotOpen(engine::ErrorKind kind, const std::string& dataSource, std::string_view fault) {
    return ProviderError(kind, fmt::format("The cube file '{}' {}. {}", dataSource, fault, whatCanBeOpened));
}

} // namespace

void RequireCubeFile(const std::string& dataSource) {
    using engine::ErrorKind;
    if (IsServerAddress(dataSource)) {
        throw ProviderError(errorNotSupported,
                            fmt::format("'{}' is the address of a server, where a cube file is needed. {}",
                                        dataSource, whatCanBeOpened));
    }
    const auto path = PathFromSetting(dataSource);
    if (engine::CubeFile::HasSignature(path)) {
        return;
    }
    std::error_code failed;
    const auto status = std::filesystem::status(path, failed);
    if (status.type() == std::filesystem::file_type::not_found) {
        throw CannotOpen(ErrorKind::FileNotFound, dataSource, "does not exist");
    }
    if (failed) {
        throw CannotOpen(ErrorKind::FileNotFound, dataSource,
                         fmt::format("cannot be reached ({})", failed.message()));
    }
    if (std::filesystem::is_directory(status)) {
        throw CannotOpen(ErrorKind::FileNotFound, dataSource, "is a folder");
    }
    if (!std::filesystem::is_regular_file(status)) {
        throw CannotOpen(ErrorKind::FileNotFound, dataSource, "is not an ordinary file");
    }
    const auto size = std::filesystem::file_size(path, failed);
    if (!failed && size == 0) {
        throw CannotOpen(ErrorKind::NotACubeFile, dataSource, "is empty");
    }
    if (!std::ifstream(path, std::ios::binary).is_open()) {
        throw CannotOpen(ErrorKind::FileNotFound, dataSource, "cannot be read: permission denied");
    }
    throw CannotOpen(ErrorKind::NotACubeFile, dataSource, "is not a cube of this program");
}

} // namespace qel
