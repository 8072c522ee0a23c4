#include "engine/storage/MappedFile.h"
#include "engine/storage/MappingWatch.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <optional>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace qel::engine {

namespace {

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }

private:
    int number_;
};

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
    throw EngineError(ErrorKind::FileNotFound,
                      fmt::format("{}: {}", PathToUtf8(path), std::generic_category().message(error)));
}

struct stat StatusOf(const Descriptor& file, const std::filesystem::path& path) {
    struct stat status = {};
    if (::fstat(file.Number(), &status) != 0) {
        Fail(path, errno);
    }
    if (S_ISDIR(status.st_mode)) {
        throw EngineError(ErrorKind::FileNotFound, PathToUtf8(path) + ": is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        throw EngineError(ErrorKind::FileNotFound, PathToUtf8(path) + ": is not a regular file");
    }
    return status;
}

std::int64_t Nanoseconds(const timespec& time) {
    constexpr std::int64_t perSecond = 1'000'000'000;
    return time.tv_sec * perSecond + time.tv_nsec;
}

} // namespace

struct MappedFile::Mapping {
    explicit Mapping(const std::filesystem::path& path)
        // Without O_NONBLOCK, opening a named pipe would block.
        : file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (file.Number() < 0) {
            Fail(path, errno);
        }
        status = StatusOf(file, path);
        links = status.st_nlink;
        changed = Nanoseconds(status.st_ctim);
        const auto size = static_cast<std::size_t>(status.st_size);
        if (size == 0) {
            return;
        }
        void* const data = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.Number(), 0);
        if (data == MAP_FAILED) {
            Fail(path, errno);
        }
        bytes = {static_cast<const std::byte*>(data), size};
        watch.emplace(bytes);
    }
    ~Mapping() {
        watch.reset(); // before unmapping: the addresses may be reused
        if (!bytes.empty()) {
            ::munmap(const_cast<std::byte*>(bytes.data()), bytes.size());
        }
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    bool IsUnchanged(const std::function<bool()>& hasContent) const {
        if (watch && watch->HasLostBytes()) {
            return false;
        }
        struct stat now = {};
        return ::fstat(file.Number(), &now) == 0 && now.st_size == status.st_size &&
               Nanoseconds(now.st_mtim) == Nanoseconds(status.st_mtim) && HasKeptContent(now, hasContent);
    }

    /// A program can restore the time of modification, but not the time of change. That one also changes when
    /// the file loses its name because another one takes its place.
    bool HasKeptContent(const struct stat& now, const std::function<bool()>& hasContent) const {
        const auto linksBefore = links.load(); // before the time: they are stored in the other order
        const std::int64_t change = Nanoseconds(now.st_ctim);
        if (change == changed.load()) {
            return true;
        }
        if (now.st_nlink >= linksBefore || !hasContent()) {
            return false;
        }
        changed = change;
        links = now.st_nlink;
        return true;
    }

    Descriptor file;
    struct stat status = {}; ///< when it was mapped
    mutable std::atomic<nlink_t> links = 0;
    mutable std::atomic<std::int64_t> changed = 0;
    std::span<const std::byte> bytes;
    std::optional<MappingWatch> watch;
};

MappedFile::MappedFile(const std::filesystem::path& path)
    : mapping_(std::make_shared<Mapping>(path)), bytes_(mapping_->bytes) {}

/// The system does, when they are read; MappingWatch sees to those that it cannot load.
void MappedFile::Load(std::size_t /*offset*/, std::size_t /*length*/) const {}

bool MappedFile::IsUnchanged(const std::function<bool()>& hasContent) const {
    return mapping_ == nullptr || mapping_->IsUnchanged(hasContent);
}

} // namespace qel::engine
