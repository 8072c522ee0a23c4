#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace qel::engine {

/// A file that appears under its name only when it is complete: written beside it, synced, renamed. Until
/// Commit the old file stays untouched; without Commit nothing stays behind. A folder, device or pipe is
/// never replaced. Every failure raises EngineError (CannotWrite) naming the file.
class AtomicFile {
public:
    explicit AtomicFile(const std::filesystem::path& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Writes at the end.
    void Append(std::span<const std::byte> bytes);
    /// Writes over bytes that were appended before.
    void Overwrite(std::uint64_t offset, std::span<const std::byte> bytes);
    void Commit();

private:
    [[noreturn]] void Fail(int error) const;

    std::filesystem::path path_, temporary_;
    int descriptor_ = -1;
};

} // namespace qel::engine
