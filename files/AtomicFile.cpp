#include "files/AtomicFile.h"

#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace qel {

namespace {

namespace fs = std::filesystem;

/// Follows a symbolic link, so that the link stays and its target is replaced.
fs::path ResolveLink(const fs::path& path) {
    std::error_code error;
    const auto target = fs::canonical(path, error);
    return error ? path : target;
}

fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// Makes the rename durable. The file itself is already synced, so failure to sync the folder is ignored.
void SyncFolder(const fs::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    ::fsync(descriptor);
    ::close(descriptor);
}

/// The name with ".", eight hexadecimal digits and ".tmp" behind it.
bool IsTemporaryOf(const std::string& target, const std::string& name) {
    constexpr std::size_t digits = 8;
    return name.size() == target.size() + digits + 5 && name.starts_with(target + ".") &&
           name.ends_with(".tmp") &&
           name.find_first_not_of("0123456789abcdef", target.size() + 1) == name.size() - 4;
}

/// Removes the file unless a living process holds it.
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

void RemoveAbandoned(const fs::path& target) {
    std::vector<fs::path> found;
    std::error_code failed;
    const std::string name = target.filename().string();
    for (fs::directory_iterator entry(FolderOf(target), failed), end; !failed && entry != end;
         entry.increment(failed)) {
        if (IsTemporaryOf(name, entry->path().filename().string())) {
            found.push_back(entry->path());
        }
    }
    for (const fs::path& path : found) {
        RemoveIfAbandoned(path);
    }
}

} // namespace

AtomicFile::AtomicFile(const fs::path& path, Failure failure) : path_(ResolveLink(path)), failure_(failure) {
    RefuseWhatIsNoFile(path);
    RemoveAbandoned(path_);
    struct stat replaced = {};
    const bool isThere = ::stat(path_.c_str(), &replaced) == 0;
    CreateTemporary(isThere ? S_IRUSR | S_IWUSR
                            : 0666U); // what replaces a private file is private from the start
    if (isThere) {
        TakeOver(replaced.st_mode, replaced.st_uid, replaced.st_gid);
    }
}

AtomicFile::~AtomicFile() {
    if (descriptor_ < 0) {
        return;
    }
    ::unlink(temporary_.c_str());
    ::close(descriptor_);
}

/// Rename would replace a device or a pipe with a regular file.
void AtomicFile::RefuseWhatIsNoFile(const fs::path& named) const {
    std::error_code unknown;
    const auto status = fs::status(path_, unknown);
    if (fs::is_directory(status)) {
        Fail(EISDIR);
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        failure_(PathToUtf8(named) + ": cannot be written: it is not a regular file");
    }
}

void AtomicFile::CreateTemporary(unsigned mode) {
    std::random_device random;
    constexpr int attempts = 100;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        temporary_ = path_;
        temporary_ += fmt::format(".{:08x}.tmp", random());
        const int created = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (created < 0 && errno != EEXIST) {
            Fail(errno);
        }
        if (created < 0) {
            continue;
        }
        // Until the lock holds, another writer may take the file for an abandoned one and remove it. A file
        // system without locks has no such writers.
        const bool isTaken = ::flock(created, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        struct stat status = {};
        if (!isTaken && ::fstat(created, &status) == 0 && status.st_nlink > 0) {
            descriptor_ = created;
            return;
        }
        ::close(created);
    }
    Fail(EEXIST);
}

/// The owner first: a change of owner takes away what mode bits give to programs.
void AtomicFile::TakeOver(unsigned mode, unsigned owner, unsigned group) const {
    const bool isSameOwner = ::fchown(descriptor_, owner, group) == 0;
    constexpr mode_t permissions = 0777;
    constexpr mode_t forOwner = 0700;
    // Bits for a group are for the old file's group.
    const bool isSameGroup = isSameOwner || ::fchown(descriptor_, static_cast<uid_t>(-1), group) == 0;
    if (::fchmod(descriptor_, mode & (isSameGroup ? permissions : forOwner)) != 0) {
        Fail(errno);
    }
}

void AtomicFile::Append(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            Fail(errno);
        }
    }
}

void AtomicFile::Overwrite(std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno != EINTR) {
            Fail(errno);
        }
        if (written > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
            offset += static_cast<std::uint64_t>(written);
        }
    }
}

void AtomicFile::Commit() {
    if (::fsync(descriptor_) != 0 || ::rename(temporary_.c_str(), path_.c_str()) != 0) {
        Fail(errno);
    }
    ::close(descriptor_);
    descriptor_ = -1;
    SyncFolder(FolderOf(path_));
}

void AtomicFile::Fail(int error) const {
    failure_(
        fmt::format("{}: cannot be written: {}", PathToUtf8(path_), std::generic_category().message(error)));
    std::abort(); // a failure raises
}

} // namespace qel
