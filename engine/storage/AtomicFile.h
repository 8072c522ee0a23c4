#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace qel::engine {

/// A file that appears under its name only when complete: it is written under a temporary name in the same
/// folder, synced and renamed. Before Commit the old file is untouched; without Commit the temporary file is
/// removed. A folder, device or pipe is never replaced. Every failure raises EngineError (CannotWrite) naming
/// the file.
class AtomicFile {
public:
    explicit AtomicFile(const std::filesystem::path& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Writes at the end.
    void Append(std::span<const std::byte> bytes);
    /// Overwrites bytes that were appended before.
    void Overwrite(std::uint64_t offset, std::span<const std::byte> bytes);
    void Commit();

private:
    [[noreturn]] void Fail(int error) const;

    std::filesystem::path path_, temporary_;
    int descriptor_ = -1;
};

} // namespace qel::engine
