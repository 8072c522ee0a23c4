#pragma once

#include <cstdint>
#include <filesystem>

namespace qel {

/// Keeps other programs of the suite from changing a file's folder while this one reads, edits and replaces
/// the file. Waits for them for some seconds at most; where the folder cannot be locked, there is no lock.
class FolderLock {
public:
    explicit FolderLock(const std::filesystem::path& file);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// False when another program held the folder all the time.
    bool IsFree() const { return isFree_; }

private:
    std::intptr_t lock_; ///< the system's number for it
    bool isFree_ = true;
};

} // namespace qel
