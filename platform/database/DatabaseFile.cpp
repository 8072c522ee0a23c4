#include "platform/database/DatabaseFile.h"

#include "platform/value/AutomationError.h"
#include "text/Utf8Path.h"

#include <array>
#include <fstream>
#include <string_view>
#include <system_error>

namespace qel {

namespace {

constexpr std::string_view sqliteSignature("SQLite format 3\0", 16);
/// Jet and its successor ACE write their names at offset four.
constexpr std::string_view jetPrefix("\0\1\0\0", 4);
constexpr std::string_view jetSignature("Standard Jet DB\0", 16);
constexpr std::string_view aceSignature("Standard ACE DB\0", 16);

} // namespace

DatabaseFileKind IdentifyDatabaseFile(const std::filesystem::path& path) {
    std::error_code failed;
    const auto type = std::filesystem::status(path, failed).type();
    if (type == std::filesystem::file_type::not_found) {
        return DatabaseFileKind::Missing;
    }
    std::ifstream file(path, std::ios::binary);
    if (type != std::filesystem::file_type::regular || !file) {
        return DatabaseFileKind::Unreadable;
    }
    std::array<char, jetPrefix.size() + jetSignature.size()> bytes{};
    file.read(bytes.data(), bytes.size());
    const std::string_view start(bytes.data(), static_cast<std::size_t>(file.gcount()));
    if (start.starts_with(sqliteSignature)) {
        return DatabaseFileKind::Sqlite;
    }
    if (!start.starts_with(jetPrefix)) {
        return DatabaseFileKind::Other;
    }
    const auto name = start.substr(jetPrefix.size());
    return name == jetSignature || name == aceSignature ? DatabaseFileKind::Jet : DatabaseFileKind::Other;
}

std::filesystem::path DatabaseFileOf(const std::string& connectionString) {
    constexpr auto unspecifiedError = static_cast<std::int32_t>(0x80004005);
    constexpr std::string_view key = ";Data Source=";
    const auto at = connectionString.find(key);
    if (at == std::string::npos) {
        throw AutomationError(unspecifiedError,
                              "The connection text names no data source: " + connectionString);
    }
    return PathFromSetting(std::string_view(connectionString).substr(at + key.size()));
}

} // namespace qel
