#include "engine/storage/MappedFile.h"
#include "engine/storage/MappingWatch.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

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

} // namespace

struct MappedFile::Mapping {
    explicit Mapping(const std::filesystem::path& path)
        // Without O_NONBLOCK, opening a named pipe would block.
        : file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (file.Number() < 0) {
            Fail(path, errno);
        }
        status = StatusOf(file, path);
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

    bool IsUnchanged() const {
        if (watch && watch->HasLostBytes()) {
            return false;
        }
        struct stat now = {};
        return ::fstat(file.Number(), &now) == 0 && now.st_size == status.st_size &&
               now.st_mtim.tv_sec == status.st_mtim.tv_sec && now.st_mtim.tv_nsec == status.st_mtim.tv_nsec;
    }

    Descriptor file;
    struct stat status = {}; ///< when it was mapped
    std::span<const std::byte> bytes;
    std::optional<MappingWatch> watch;
};

MappedFile::MappedFile() = default;

MappedFile::MappedFile(const std::filesystem::path& path)
    : mapping_(std::make_unique<Mapping>(path)), bytes_(mapping_->bytes) {}

MappedFile::~MappedFile() = default;

MappedFile::MappedFile(MappedFile&& other) noexcept
    : mapping_(std::move(other.mapping_)), bytes_(std::exchange(other.bytes_, {})) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(mapping_, other.mapping_);
    std::swap(bytes_, other.bytes_);
    return *this;
}

bool MappedFile::IsUnchanged() const { return mapping_ == nullptr || mapping_->IsUnchanged(); }

} // namespace qel::engine
