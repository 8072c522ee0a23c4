#include "files/FolderLock.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <windows.h>

namespace qel {

namespace {

/// A folder cannot be locked here. The programs of one user agree on a name instead.
std::wstring MutexName(const std::filesystem::path& file) {
    constexpr std::size_t longest = 200; // a system's limit; programs that share a name wait, no more
    std::error_code failed;
    const auto folder = std::filesystem::absolute(file, failed).parent_path();
    std::wstring name = PathFromUtf8(FoldCase(PathToUtf8(folder))).wstring();
    std::replace(name.begin(), name.end(), L'\\', L'/');
    return L"Local\\qel-folder-" + name.substr(name.size() - std::min(name.size(), longest));
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
