#include "files/WrittenFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace qel::files {

namespace {

namespace fs = std::filesystem;

/// Makes the rename durable. The file itself is already synced, so failure to sync the folder is ignored.
void SyncFolder(const fs::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

fs::path ResolveLink(const fs::path& path) {
    std::error_code error;
    const auto target = fs::canonical(path, error);
    return error ? path : target;
}

int CreateLocked(const fs::path& path, bool isPrivate, int& descriptor) {
    const mode_t mode = isPrivate ? S_IRUSR | S_IWUSR : 0666U;
    const int created = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (created < 0) {
        return errno;
    }
    // Until the lock holds, another writer may take the file for an abandoned one and remove it. A file
    // system without locks has no such writers.
    const bool isTaken = ::flock(created, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    struct stat status = {};
    if (!isTaken && ::fstat(created, &status) == 0 && status.st_nlink > 0) {
        descriptor = created;
        return 0;
    }
    ::close(created);
    return EEXIST;
}

/// The owner first: a change of owner takes away what mode bits give to programs.
int TakeOverRights(int descriptor, const fs::path& replaced) {
    struct stat status = {};
    if (::stat(replaced.c_str(), &status) != 0) {
        return errno;
    }
    const bool isSameOwner = ::fchown(descriptor, status.st_uid, status.st_gid) == 0;
    constexpr mode_t permissions = 0777;
    constexpr mode_t forOwner = 0700;
    // Bits for a group are for the old file's group.
    const bool isSameGroup = isSameOwner || ::fchown(descriptor, static_cast<uid_t>(-1), status.st_gid) == 0;
    return ::fchmod(descriptor, status.st_mode & (isSameGroup ? permissions : forOwner)) == 0 ? 0 : errno;
}

int WriteAll(int descriptor, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

int WriteAllAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        if (written > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
            offset += static_cast<std::uint64_t>(written);
        }
    }
    return 0;
}

int ReadAllAt(int descriptor, std::uint64_t offset, std::span<std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t read = ::pread(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (read == 0 || (read < 0 && errno != EINTR)) {
            return read == 0 ? EIO : errno;
        }
        if (read > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(read));
            offset += static_cast<std::uint64_t>(read);
        }
    }
    return 0;
}

int Sync(int& descriptor) { return ::fsync(descriptor) == 0 ? 0 : errno; }

int Move(int& descriptor, const fs::path& from, const fs::path& target) {
    if (::rename(from.c_str(), target.c_str()) != 0) {
        return errno;
    }
    ::close(descriptor);
    descriptor = -1;
    SyncFolder(target.has_parent_path() ? target.parent_path() : fs::path("."));
    return 0;
}

void CloseAndRemove(int descriptor, const fs::path& path) {
    ::unlink(path.c_str());
    ::close(descriptor);
}

void RemoveIfAbandoned(const fs::path& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        ::unlink(path.c_str());
    }
    ::close(descriptor);
}

} // namespace qel::files
