// AtomicFile on Windows.

#include "engine/EngineError.h"
#include "engine/storage/AtomicFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <windows.h>

namespace qel::engine {

namespace {

std::string Utf8Of(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

} // namespace

AtomicFile::AtomicFile(const std::filesystem::path& path) : path_(path) {
    std::error_code unknown;
    const auto status = std::filesystem::status(path_, unknown);
    if (std::filesystem::is_directory(status))
        Fail(EISDIR);
    // A rename would put a file in the place of a device or a pipe.
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw EngineError(ErrorKind::CannotWrite,
                          fmt::format("{}: cannot be written: it is not a regular file", Utf8Of(path)));
    std::random_device random;
    constexpr int attempts = 100;
    for (int attempt = 0; descriptor_ < 0; ++attempt) {
        temporary_ = path_;
        temporary_ += fmt::format(".{:08x}.tmp", random());
        descriptor_ = ::_wopen(temporary_.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                               _S_IREAD | _S_IWRITE);
        if (descriptor_ < 0 && (errno != EEXIST || attempt == attempts))
            Fail(errno);
    }
}

AtomicFile::~AtomicFile() {
    if (descriptor_ >= 0)
        ::_close(descriptor_);
    if (!temporary_.empty())
        ::_wunlink(temporary_.c_str());
}

void AtomicFile::Append(std::span<const std::byte> bytes) {
    constexpr std::size_t mostAtOnce = std::size_t{1} << 30U; // the count that is written is an int
    while (!bytes.empty()) {
        const auto part = static_cast<unsigned>(std::min(bytes.size(), mostAtOnce));
        const int written = ::_write(descriptor_, bytes.data(), part);
        if (written < 0)
            Fail(errno);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void AtomicFile::Overwrite(std::uint64_t offset, std::span<const std::byte> bytes) {
    if (::_lseeki64(descriptor_, static_cast<long long>(offset), SEEK_SET) < 0)
        Fail(errno);
    Append(bytes);
    if (::_lseeki64(descriptor_, 0, SEEK_END) < 0)
        Fail(errno);
}

void AtomicFile::Commit() {
    if (::_commit(descriptor_) != 0)
        Fail(errno);
    // An open file can be renamed by nobody else's leave, so it is closed first.
    if (::_close(std::exchange(descriptor_, -1)) != 0)
        Fail(errno);
    if (::MoveFileExW(temporary_.c_str(), path_.c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        const std::error_code error(static_cast<int>(::GetLastError()), std::system_category());
        throw EngineError(ErrorKind::CannotWrite,
                          fmt::format("{}: cannot be replaced: {}", Utf8Of(path_), error.message()));
    }
    temporary_.clear();
}

void AtomicFile::Fail(int error) const {
    throw EngineError(ErrorKind::CannotWrite, fmt::format("{}: cannot be written: {}", Utf8Of(path_),
                                                          std::generic_category().message(error)));
}

} // namespace qel::engine
