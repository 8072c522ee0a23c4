#include "files/WrittenFile.h"

#include <aclapi.h>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <vector>
#include <windows.h>

namespace qel::files {

namespace {

namespace fs = std::filesystem;

int ErrnoOf(DWORD error) {
    const auto condition =
        std::error_code(static_cast<int>(error), std::system_category()).default_error_condition();
    return condition.category() == std::generic_category() ? condition.value() : EIO;
}

int LastErrno() { return ErrnoOf(::GetLastError()); }

HANDLE HandleOf(int descriptor) {
    return reinterpret_cast<HANDLE>( // NOLINT(performance-no-int-to-ptr): a handle is a number
        ::_get_osfhandle(descriptor));
}

bool IsReadOnly(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

/// A handle knows no current folder. The standard library would take \\server\share for a path of this drive.
fs::path WholePath(const fs::path& path) {
    constexpr DWORD longest = 32768;
    std::wstring whole(longest, L'\0');
    const DWORD length = ::GetFullPathNameW(path.c_str(), longest, whole.data(), nullptr);
    whole.resize(length < longest ? length : 0);
    return length == 0 ? path : fs::path(whole);
}

/// The bytes of a FILE_RENAME_INFO for that name; `flags` as FileRenameInfoEx takes them.
std::vector<std::byte> RenameTo(const fs::path& target, DWORD flags) {
    const std::wstring& name = target.native();
    const std::size_t bytes = name.size() * sizeof(wchar_t);
    std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + bytes);
    auto* rename = reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
    std::copy_n(reinterpret_cast<const std::byte*>(&flags), sizeof flags, memory.data());
    rename->FileNameLength = static_cast<DWORD>(bytes);
    std::copy_n(name.data(), name.size(), static_cast<wchar_t*>(rename->FileName));
    return memory;
}

/// Renames the open file, opened for that, in one step. The newer way also replaces a file that others read.
bool Rename(HANDLE file, const fs::path& target) {
    constexpr DWORD replaceIfExists = 1, posixSemantics = 2;
    constexpr auto renameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22); // FileRenameInfoEx
    auto memory = RenameTo(target, replaceIfExists | posixSemantics);
    if (::SetFileInformationByHandle(file, renameInfoEx, memory.data(), static_cast<DWORD>(memory.size())) !=
        FALSE) {
        return true;
    }
    memory = RenameTo(target, replaceIfExists);
    return ::SetFileInformationByHandle(file, FileRenameInfo, memory.data(),
                                        static_cast<DWORD>(memory.size())) != FALSE;
}

/// With the flag, the new name is on the disk when a renaming ends.
HANDLE OpenToRename(const fs::path& path) {
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return ::CreateFileW(path.c_str(), DELETE | SYNCHRONIZE, shared, nullptr, OPEN_EXISTING,
                         FILE_FLAG_WRITE_THROUGH, nullptr);
}

/// The name of another temporary file of the same target.
fs::path Another(const fs::path& temporary) {
    std::wstring name = temporary.native();
    wchar_t& lastDigit = name[name.size() - std::size(L".tmp")];
    lastDigit = lastDigit == L'0' ? L'1' : L'0';
    return name;
}

/// For systems before Windows 10, where no file takes the place of one that others have open: that one is
/// moved aside first, and goes when they close it.
bool ReplaceOpenFile(HANDLE file, const fs::path& target, const fs::path& aside) {
    const HANDLE old = OpenToRename(target);
    if (old == INVALID_HANDLE_VALUE) {
        return false;
    }
    bool isDone = false;
    if (Rename(old, aside)) {
        isDone = Rename(file, target);
        if (!isDone) {
            Rename(old, target);
        }
    }
    ::CloseHandle(old);
    if (isDone) {
        ::DeleteFileW(aside.c_str());
    }
    return isDone;
}

/// A file that is write-protected could not be replaced.
int Replace(const fs::path& from, const fs::path& target) {
    const HANDLE file = OpenToRename(from);
    if (file == INVALID_HANDLE_VALUE) {
        return LastErrno();
    }
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    if (IsReadOnly(attributes)) {
        ::SetFileAttributesW(target.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    }
    int error = Rename(file, WholePath(target)) ? 0 : LastErrno();
    if (error == EACCES && ReplaceOpenFile(file, WholePath(target), WholePath(Another(from)))) {
        error = 0;
    }
    ::CloseHandle(file);
    if (IsReadOnly(attributes)) {
        ::SetFileAttributesW(target.c_str(), attributes);
    }
    return error;
}

/// In one call of the system.
constexpr std::size_t mostAtOnce = std::size_t{1} << 30U;

OVERLAPPED PlaceAt(std::uint64_t offset) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
    return place;
}

int Own(HANDLE file, int& descriptor) {
    descriptor = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_BINARY);
    if (descriptor < 0) {
        ::CloseHandle(file);
        return EMFILE;
    }
    return 0;
}

} // namespace

fs::path ResolveLink(const fs::path& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return path;
    }
    const HANDLE file = ::CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return path;
    }
    constexpr DWORD longest = 32768;
    std::wstring name(longest, L'\0');
    const DWORD length = ::GetFinalPathNameByHandleW(file, name.data(), longest, FILE_NAME_NORMALIZED);
    ::CloseHandle(file);
    if (length == 0 || length >= longest) {
        return path;
    }
    name.resize(length);
    const std::wstring onServer = LR"(\\?\UNC\)", onDisk = LR"(\\?\)";
    if (name.starts_with(onServer)) {
        return LR"(\\)" + name.substr(onServer.size());
    }
    return name.starts_with(onDisk) ? name.substr(onDisk.size()) : name;
}

/// Others may read the file, but not delete it: nobody takes it for an abandoned one.
int CreateLocked(const fs::path& path, bool /*isPrivate*/, int& descriptor) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | WRITE_DAC, FILE_SHARE_READ,
                                      nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return LastErrno();
    }
    return Own(file, descriptor);
}

/// A file system without such rights has none to take over.
int TakeOverRights(int descriptor, const fs::path& replaced) {
    PACL rights = nullptr;
    PSECURITY_DESCRIPTOR described = nullptr;
    std::wstring name = replaced.native();
    if (::GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                &rights, nullptr, &described) != ERROR_SUCCESS) {
        return 0;
    }
    const std::unique_ptr<void, decltype(&::LocalFree)> owner(described, &::LocalFree);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ::GetSecurityDescriptorControl(described, &control, &revision);
    const DWORD inheritance = (control & SE_DACL_PROTECTED) != 0 ? PROTECTED_DACL_SECURITY_INFORMATION
                                                                 : UNPROTECTED_DACL_SECURITY_INFORMATION;
    return ErrnoOf(::SetSecurityInfo(HandleOf(descriptor), SE_FILE_OBJECT,
                                     DACL_SECURITY_INFORMATION | inheritance, nullptr, nullptr, rights,
                                     nullptr));
}

int WriteAll(int descriptor, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        const auto count = static_cast<DWORD>(std::min(bytes.size(), mostAtOnce));
        if (::WriteFile(HandleOf(descriptor), bytes.data(), count, &written, nullptr) == FALSE) {
            return LastErrno();
        }
        bytes = bytes.subspan(written);
    }
    return 0;
}

int WriteAllAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceAt(offset);
        DWORD written = 0;
        const auto count = static_cast<DWORD>(std::min(bytes.size(), mostAtOnce));
        if (::WriteFile(HandleOf(descriptor), bytes.data(), count, &written, &place) == FALSE) {
            return LastErrno();
        }
        bytes = bytes.subspan(written);
        offset += written;
    }
    return 0;
}

int ReadAllAt(int descriptor, std::uint64_t offset, std::span<std::byte> bytes) {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceAt(offset);
        DWORD read = 0;
        const auto count = static_cast<DWORD>(std::min(bytes.size(), mostAtOnce));
        if (::ReadFile(HandleOf(descriptor), bytes.data(), count, &read, &place) == FALSE || read == 0) {
            return read == 0 ? EIO : LastErrno();
        }
        bytes = bytes.subspan(read);
        offset += read;
    }
    return 0;
}

/// A file that is open for writing keeps out readers that do not share it for that.
int Sync(int& descriptor) {
    if (::FlushFileBuffers(HandleOf(descriptor)) == FALSE) {
        return LastErrno();
    }
    const HANDLE reading =
        ::ReOpenFile(HandleOf(descriptor), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, 0);
    if (reading == INVALID_HANDLE_VALUE) {
        return LastErrno();
    }
    ::_close(descriptor);
    return Own(reading, descriptor);
}

int Move(int& descriptor, const fs::path& from, const fs::path& target) {
    ::_close(descriptor); // whoever may rename an open file keeps the reader of a new cube out
    descriptor = -1;
    const int error = Replace(from, target);
    if (error != 0) {
        ::DeleteFileW(from.c_str());
    }
    return error;
}

void CloseAndRemove(int descriptor, const fs::path& path) {
    ::_close(descriptor);
    ::DeleteFileW(path.c_str());
}

void RemoveIfAbandoned(const fs::path& path) { ::DeleteFileW(path.c_str()); }

} // namespace qel::files
