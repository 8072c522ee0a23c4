#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace qel {

/// What tells one file on disk from another that was later given its name.
struct FileIdentity {
    std::uint64_t device = 0, file = 0; ///< 0 where the platform does not number its files
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< in the platform's finest unit

    bool operator==(const FileIdentity&) const = default;
};

/// None when there is no such file or it cannot be looked at.
std::optional<FileIdentity> IdentifyFile(const std::filesystem::path& path);

} // namespace qel
