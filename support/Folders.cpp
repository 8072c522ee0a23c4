#include "support/Folders.h"

#include "platform/value/AutomationError.h"
#include "text/Utf8Path.h"

#include <system_error>

namespace qel {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t pathFileAccessError = 75;
constexpr std::int32_t pathNotFound = 76;

/// With a trailing separator, the last part of the path would be empty.
std::string_view WithoutSeparators(std::string_view path) {
    const auto end = path.find_last_not_of("/\\");
    return end == std::string_view::npos ? path : path.substr(0, end + 1);
}

} // namespace

void MakeFolder(std::string_view path) {
    const fs::path folder = PathFromSetting(WithoutSeparators(path));
    std::error_code failed;
    if (folder.has_parent_path() && !fs::is_directory(folder.parent_path(), failed)) {
        throw AutomationError(pathNotFound, "Path not found: '" + std::string(path) + "'");
    }
    failed.clear();
    if (!fs::create_directory(folder, failed) || failed) {
        throw AutomationError(pathFileAccessError, "Path/File access error: the folder '" +
                                                       std::string(path) + "' cannot be created (" +
                                                       failed.message() + ")");
    }
}

} // namespace qel
