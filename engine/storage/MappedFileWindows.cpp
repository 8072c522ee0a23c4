#include "engine/storage/MappedFile.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <system_error>
#include <windows.h>

namespace qel::engine {

namespace {

class Handle {
public:
    explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    ~Handle() {
        if (handle_ != nullptr) {
            ::CloseHandle(handle_);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE Get() const { return handle_; }

private:
    HANDLE handle_;
};

[[noreturn]] void Fail(const std::filesystem::path& path) {
    const auto error = static_cast<int>(::GetLastError());
    throw EngineError(ErrorKind::FileNotFound,
                      fmt::format("{}: {}", PathToUtf8(path), std::system_category().message(error)));
}

} // namespace

struct MappedFile::Mapping {
    explicit Mapping(const std::filesystem::path& path) {
        std::error_code ignored;
        if (std::filesystem::is_directory(path, ignored)) {
            throw EngineError(ErrorKind::FileNotFound, PathToUtf8(path) + ": is a folder");
        }
        constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        const Handle file(::CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
        LARGE_INTEGER size = {};
        if (file.Get() == nullptr || !::GetFileSizeEx(file.Get(), &size)) {
            Fail(path);
        }
        if (size.QuadPart == 0) {
            return;
        }
        const Handle mapping(::CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
        if (mapping.Get() == nullptr) {
            Fail(path);
        }
        const void* const data =
            ::MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 0); // keeps the file open by itself
        if (data == nullptr) {
            Fail(path);
        }
        bytes = {static_cast<const std::byte*>(data), static_cast<std::size_t>(size.QuadPart)};
    }
    ~Mapping() {
        if (!bytes.empty()) {
            ::UnmapViewOfFile(bytes.data());
        }
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    std::span<const std::byte> bytes;
};

MappedFile::MappedFile(const std::filesystem::path& path)
    : mapping_(std::make_shared<Mapping>(path)), bytes_(mapping_->bytes) {}

/// Windows refuses to truncate a mapped file, which is how programs overwrite files.
bool MappedFile::IsUnchanged(const std::function<bool()>& /*hasContent*/) const { return true; }

} // namespace qel::engine
