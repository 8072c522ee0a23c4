#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace qel {

/// What a file of the local database's name holds, by its first bytes.
enum class DatabaseFileKind : std::uint8_t { Missing, Unreadable, Jet, Sqlite, Other };

DatabaseFileKind IdentifyDatabaseFile(const std::filesystem::path& path);

/// The file that a connection text names as its data source, which ends the text. Raises AutomationError when
/// it names none.
std::filesystem::path DatabaseFileOf(const std::string& connectionString);

} // namespace qel
