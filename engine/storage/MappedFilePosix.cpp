#include "engine/EngineError.h"
#include "engine/storage/MappedFile.h"
#include "engine/storage/PathText.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
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
        if (number_ >= 0)
            ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }

private:
    int number_;
};

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
    throw EngineError(ErrorKind::FileNotFound,
                      fmt::format("{}: {}", PathText(path), std::generic_category().message(error)));
}

} // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
    // Without O_NONBLOCK a named pipe would be waited for.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.Number() < 0)
        Fail(path, errno);
    struct stat status = {};
    if (::fstat(file.Number(), &status) != 0)
        Fail(path, errno);
    if (S_ISDIR(status.st_mode))
        throw EngineError(ErrorKind::FileNotFound, PathText(path) + ": is a folder");
    if (!S_ISREG(status.st_mode))
        throw EngineError(ErrorKind::FileNotFound, PathText(path) + ": is not a regular file");
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size == 0)
        return;
    void* const data = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.Number(), 0);
    if (data == MAP_FAILED)
        Fail(path, errno);
    bytes_ = {static_cast<const std::byte*>(data), size};
}

MappedFile::~MappedFile() {
    if (!bytes_.empty())
        ::munmap(const_cast<std::byte*>(bytes_.data()), bytes_.size());
}

MappedFile::MappedFile(MappedFile&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    return *this;
}

} // namespace qel::engine
