#pragma once

#include "platform/data/xmla/ServerOptions.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace qel {

/// "servers.ini" in the user's configuration folder; nullopt when that folder is unknown.
std::optional<std::filesystem::path> ServerSettingsFile();

/// The servers that the user allows or refuses: those that have a section in the file, and those that the
/// user was asked about since the program started. A section is named after scheme, host and port
/// ("[http://olap.example:8080]"); "[olap.example]" is https on its own port. Thread-safe.
class KnownServers {
public:
    explicit KnownServers(std::optional<std::filesystem::path> file) : file_(std::move(file)) {}

    /// Reads the file. Raises AutomationError for an entry that cannot be understood, and for a password in a
    /// file that others can read.
    ServerRights RightsOf(const ServerAddress& address) const;
    /// Until the program ends; counts before the file.
    void Answer(const ServerAddress& address, bool isAllowed);
    /// For good: also writes the file. Raises AutomationError when that fails.
    void Remember(const ServerAddress& address, bool isAllowed);

    const std::optional<std::filesystem::path>& File() const { return file_; }

private:
    std::optional<std::filesystem::path> file_;
    mutable std::mutex mutex_;              ///< guards the one below
    std::map<std::string, bool> isAllowed_; ///< by origin
};

} // namespace qel
