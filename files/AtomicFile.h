#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace qel {

/// A file that appears under its name only when complete: it is written under a temporary name in the same
/// folder, synced and renamed. Before Commit the old file is untouched; without Commit the temporary file is
/// removed. The new file has the mode or access rights and, where the system permits, the owner of the file
/// that it replaces.
/// A symbolic link stays, and its target is replaced; a folder, device or pipe is never replaced. Temporary
/// files that an ended program left under the same name are removed.
class AtomicFile {
public:
    /// Raises the caller's error for a message such as "/data/x.cub: cannot be written: No space left on
    /// device"; does not return.
    using Failure = void (*)(const std::string& message);

    AtomicFile(const std::filesystem::path& path, Failure failure);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Writes at the end.
    void Append(std::span<const std::byte> bytes);
    /// Writes at a place, also behind the end; for a file to which nothing is appended. Several threads may
    /// write other places.
    void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes);
    /// Puts what was written on the disk. From then on nothing is written, and others can open the file for
    /// reading alone.
    void Finish();
    void Commit();
    /// Where the bytes are before Commit.
    const std::filesystem::path& TemporaryPath() const { return temporary_; }

private:
    void RefuseWhatIsNoFile(const std::filesystem::path& named) const;
    /// Raises unless the error number is 0.
    void Require(int error) const;

    std::filesystem::path path_, temporary_;
    Failure failure_;
    int descriptor_ = -1;
    bool isFinished_ = false;
};

} // namespace qel
