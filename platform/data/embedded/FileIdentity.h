#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace qel {

/// Identifies a file on disk, so that another file later put at the same path is recognised.
struct FileIdentity {
    std::uint64_t device = 0, file = 0; ///< 0 where the platform has no file numbers
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< in the platform's finest unit
    std::int64_t changed = 0;  ///< the same; unlike the other, no program sets it. 0 where there is none

    bool operator==(const FileIdentity&) const = default;
};

/// Nullopt when the file is missing or its attributes cannot be read.
[[nodiscard]] std::optional<FileIdentity> IdentifyFile(const std::filesystem::path& path);

} // namespace qel
