#include "engine/storage/MappedFile.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>
#include <vector>
#include <windows.h>

namespace qel::engine {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, ErrorKind kind) {
    const auto error = static_cast<int>(::GetLastError());
    throw EngineError(kind, fmt::format("{}: {}", PathToUtf8(path), std::system_category().message(error)));
}

/// An open file that others may read, delete and rename, but not write.
class Handle {
public:
    explicit Handle(const std::filesystem::path& path)
        : handle_(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE) {
            Fail(path, ErrorKind::FileNotFound);
        }
    }
    ~Handle() { ::CloseHandle(handle_); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE Get() const { return handle_; }

private:
    HANDLE handle_;
};

/// Addresses for a whole file. Memory is taken where bytes are loaded.
class Reserve {
public:
    explicit Reserve(std::size_t size)
        : start_(size == 0 ? nullptr : ::VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_READWRITE)) {
        if (start_ == nullptr && size > 0) {
            throw std::bad_alloc();
        }
    }
    ~Reserve() {
        if (start_ != nullptr) {
            ::VirtualFree(start_, 0, MEM_RELEASE);
        }
    }
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;

    std::byte* Start() const { return static_cast<std::byte*>(start_); }

private:
    void* start_;
};

struct FileState {
    std::int64_t size = -1, written = 0, changed = 0;
    std::uint32_t names = 0;
};

FileState StateOf(HANDLE file) {
    FILE_BASIC_INFO times = {};
    FILE_STANDARD_INFO sizes = {};
    const bool isKnown =
        ::GetFileInformationByHandleEx(file, FileBasicInfo, &times, sizeof times) != FALSE &&
        ::GetFileInformationByHandleEx(file, FileStandardInfo, &sizes, sizeof sizes) != FALSE;
    return isKnown ? FileState{sizes.EndOfFile.QuadPart, times.LastWriteTime.QuadPart,
                               times.ChangeTime.QuadPart, sizes.NumberOfLinks}
                   : FileState();
}

std::size_t SizeInMemory(const FileState& state, const std::filesystem::path& path) {
    if (state.size < 0) {
        Fail(path, ErrorKind::FileNotFound);
    }
    if (!std::in_range<std::size_t>(state.size)) {
        throw std::bad_alloc();
    }
    return static_cast<std::size_t>(state.size);
}

const std::filesystem::path& NoFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw EngineError(ErrorKind::FileNotFound, PathToUtf8(path) + ": is a folder");
    }
    return path;
}

} // namespace

/// Copies instead of a view of the file: where a network drive or a disk goes away, reading a view raises a
/// structured exception, which ends the host, and no page can be put in its place; a failed ReadFile is an
/// error like any other. Nor does a view keep the file from being replaced.
struct MappedFile::Mapping {
    explicit Mapping(const std::filesystem::path& filePath)
        : path(NoFolder(filePath)), file(path), state(StateOf(file.Get())), memory(SizeInMemory(state, path)),
          bytes(memory.Start(), static_cast<std::size_t>(state.size)), isLoaded(bytes.size() / unit + 1) {}

    void Load(std::size_t offset, std::size_t length) const {
        const std::lock_guard lock(mutex);
        for (std::size_t number = offset / unit; length > 0 && number <= (offset + length - 1) / unit;
             ++number) {
            if (!isLoaded[number]) {
                Read(number * unit, std::min(unit, bytes.size() - number * unit));
                isLoaded[number] = true; // others may read it from now on: it is never written again
            }
        }
    }

    void Read(std::size_t offset, std::size_t length) const {
        std::byte* const start = memory.Start() + offset;
        if (::VirtualAlloc(start, length, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
            throw std::bad_alloc();
        }
        OVERLAPPED place = {};
        place.Offset = static_cast<DWORD>(offset);
        place.OffsetHigh = static_cast<DWORD>(std::uint64_t{offset} >> 32U);
        DWORD count = 0;
        if (::ReadFile(file.Get(), start, static_cast<DWORD>(length), &count, &place) == FALSE) {
            Fail(path, ErrorKind::DamagedFile);
        }
        if (count != length) {
            throw EngineError(ErrorKind::DamagedFile,
                              fmt::format("{}: was cut short to {} bytes while it was open", PathToUtf8(path),
                                          offset + count));
        }
    }

    /// A program can restore the time of writing, but not that of any change. That one also changes when the
    /// file loses its name because another one takes its place.
    bool IsUnchanged() const {
        const FileState now = StateOf(file.Get());
        return now.size == state.size && now.written == state.written &&
               (now.changed == state.changed || now.names < state.names);
    }

    static constexpr std::size_t unit = 65536; ///< a page of a cube file

    std::filesystem::path path;
    Handle file;
    FileState state; ///< when it was opened
    Reserve memory;
    std::span<const std::byte> bytes;
    mutable std::mutex mutex;
    mutable std::vector<bool> isLoaded; ///< by unit
};

MappedFile::MappedFile(const std::filesystem::path& path)
    : mapping_(std::make_shared<Mapping>(path)), bytes_(mapping_->bytes) {}

void MappedFile::Load(std::size_t offset, std::size_t length) const { mapping_->Load(offset, length); }

/// The bytes that were read are copies.
bool MappedFile::IsUnchanged(const std::function<bool()>& /*hasContent*/) const {
    return mapping_ == nullptr || mapping_->IsUnchanged();
}

} // namespace qel::engine
