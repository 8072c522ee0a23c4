#include "engine/storage/AtomicFile.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <system_error>
#include <unistd.h>

namespace qel::engine {

namespace {

/// Follows a symbolic link, so that the link stays and its target is replaced.
std::filesystem::path ResolveLink(const std::filesystem::path& path) {
    std::error_code error;
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target;
}

/// Makes the rename durable. The file itself is already synced, so failure to sync the folder is ignored.
void SyncFolder(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

AtomicFile::AtomicFile(const std::filesystem::path& path) : path_(ResolveLink(path)) {
    std::error_code unknown;
    const auto status = std::filesystem::status(path_, unknown);
    if (std::filesystem::is_directory(status)) {
        Fail(EISDIR);
    }
    // Rename would replace a device or a pipe with a regular file.
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        throw EngineError(ErrorKind::CannotWrite,
                          fmt::format("{}: cannot be written: it is not a regular file", PathToUtf8(path)));
    }
    std::random_device random;
    constexpr int attempts = 100;
    for (int attempt = 0; descriptor_ < 0; ++attempt) {
        temporary_ = path_;
        temporary_ += fmt::format(".{:08x}.tmp", random());
        descriptor_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor_ < 0 && (errno != EEXIST || attempt == attempts)) {
            Fail(errno);
        }
    }
}

AtomicFile::~AtomicFile() {
    if (descriptor_ < 0) {
        return;
    }
    ::close(descriptor_);
    ::unlink(temporary_.c_str());
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
    SyncFolder(path_.parent_path());
}

void AtomicFile::Fail(int error) const {
    throw EngineError(ErrorKind::CannotWrite, fmt::format("{}: cannot be written: {}", PathToUtf8(path_),
                                                          std::generic_category().message(error)));
}

} // namespace qel::engine
