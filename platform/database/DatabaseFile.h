#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace qel {

/// The kind of a database file, by its first bytes.
enum class DatabaseFileKind : std::uint8_t { Missing, Unreadable, Jet, Sqlite, Other };

DatabaseFileKind IdentifyDatabaseFile(const std::filesystem::path& path);

/// The data source of a connection text, which must be its last property. Raises AutomationError when it is
/// missing.
std::filesystem::path DatabaseFileOf(const std::string& connectionString);

} // namespace qel
