#pragma once

#include <cstdint>
#include <filesystem>

namespace qel {

/// What a file of the local database's name holds, by its first bytes.
enum class DatabaseFileKind : std::uint8_t { Missing, Unreadable, Jet, Sqlite, Other };

DatabaseFileKind IdentifyDatabaseFile(const std::filesystem::path& path);

} // namespace qel
