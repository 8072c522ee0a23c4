#include "platform/data/embedded/FileIdentity.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace qel {

#ifdef _WIN32

std::optional<FileIdentity> IdentifyFile(const std::filesystem::path& path) {
    std::error_code failed;
    const auto size = std::filesystem::file_size(path, failed);
    if (failed) {
        return std::nullopt;
    }
    const auto modified = std::filesystem::last_write_time(path, failed);
    if (failed) {
        return std::nullopt;
    }
    return FileIdentity{0, 0, size, modified.time_since_epoch().count(), 0};
}

#else

std::optional<FileIdentity> IdentifyFile(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
    const auto nanoseconds = [](const timespec& time) {
        return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
    };
    return FileIdentity{status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
                        nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

#endif

} // namespace qel
