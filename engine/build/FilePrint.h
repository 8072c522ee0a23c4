#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace qel::engine {

/// By which a file's bytes are known again.
struct FilePrint {
    std::uint64_t size = 0, high = 0, low = 0; ///< with the two halves of its XXH3-128

    bool operator==(const FilePrint&) const = default;
};

/// A file as it is now.
struct ReadFile {
    FilePrint all;
    std::optional<FilePrint> beginning; ///< of its first bytes; absent when the file has fewer
    bool beginsWithLines = false;       ///< these bytes end with a line feed
    std::filesystem::file_time_type modified;
};

/// Reads the file, with the print of its first `size` bytes. Raises EngineError (FileNotFound).
ReadFile TakePrint(const std::filesystem::path& path, std::uint64_t size);

/// Whether size and time are still those.
bool IsAsRead(const std::filesystem::path& path, const ReadFile& read);

} // namespace qel::engine
