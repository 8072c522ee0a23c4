#include "files/FolderLock.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <functional>
#include <string>
#include <system_error>
#include <windows.h>

namespace qel {

namespace {

/// A folder cannot be locked here. The programs of one user agree on a name instead.
std::wstring MutexName(const std::filesystem::path& file) {
    std::error_code failed;
    const auto folder = std::filesystem::absolute(file, failed).parent_path();
    return L"Local\\qel-folder-" + std::to_wstring(std::hash<std::string>()(FoldCase(PathToUtf8(folder))));
}

HANDLE HandleOfLock(std::intptr_t lock) {
    return reinterpret_cast<HANDLE>(lock); // NOLINT(performance-no-int-to-ptr): a handle is a number
}

} // namespace

FolderLock::FolderLock(const std::filesystem::path& file)
    : lock_(reinterpret_cast<std::intptr_t>(::CreateMutexW(nullptr, FALSE, MutexName(file).c_str()))) {
    constexpr DWORD patience = 10'000; // milliseconds
    if (lock_ == 0) {
        return;
    }
    isFree_ = ::WaitForSingleObject(HandleOfLock(lock_), patience) != WAIT_TIMEOUT;
}

FolderLock::~FolderLock() {
    if (lock_ == 0) {
        return;
    }
    if (isFree_) {
        ::ReleaseMutex(HandleOfLock(lock_));
    }
    ::CloseHandle(HandleOfLock(lock_));
}

} // namespace qel
