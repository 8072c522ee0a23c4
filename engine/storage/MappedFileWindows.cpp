// MappedFile on Windows.

#include "engine/EngineError.h"
#include "engine/storage/MappedFile.h"

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <system_error>
#include <utility>
#include <windows.h>

namespace qel::engine {

namespace {

class Handle {
public:
    explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    ~Handle() {
        if (handle_ != nullptr)
            ::CloseHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    explicit operator bool() const { return handle_ != nullptr; }
    HANDLE Get() const { return handle_; }

private:
    HANDLE handle_;
};

std::string Utf8Of(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& fault) {
    throw EngineError(ErrorKind::FileNotFound, fmt::format("{}: {}", Utf8Of(path), fault));
}

[[noreturn]] void FailWithLastError(const std::filesystem::path& path) {
    const std::error_code error(static_cast<int>(::GetLastError()), std::system_category());
    Fail(path, error.message());
}

} // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        Fail(path, "is a folder");
    // The suite may put a new cube in the place of this one while it is being read.
    constexpr DWORD sharing = FILE_SHARE_READ | FILE_SHARE_DELETE;
    const Handle file(::CreateFileW(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        FailWithLastError(path);
    if (::GetFileType(file.Get()) != FILE_TYPE_DISK)
        Fail(path, "is not a regular file");
    LARGE_INTEGER length = {};
    if (::GetFileSizeEx(file.Get(), &length) == 0)
        FailWithLastError(path);
    if (length.QuadPart == 0)
        return;
    if (static_cast<std::uint64_t>(length.QuadPart) > SIZE_MAX)
        Fail(path, "is too large for a 32-bit program");
    const Handle mapping(::CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!mapping)
        FailWithLastError(path);
    const void* const data = ::MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 0);
    if (data == nullptr)
        FailWithLastError(path);
    bytes_ = {static_cast<const std::byte*>(data), static_cast<std::size_t>(length.QuadPart)};
}

MappedFile::~MappedFile() {
    if (!bytes_.empty())
        ::UnmapViewOfFile(bytes_.data());
}

MappedFile::MappedFile(MappedFile&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    return *this;
}

} // namespace qel::engine
