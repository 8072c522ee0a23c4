#include "server/ServerModule.h"

#include "platform/windows/ProviderFailure.h"

#include <atomic>

namespace qel::server {

namespace {

std::atomic<long>& Uses() {
    static std::atomic<long> uses{0};
    return uses;
}

} // namespace

HMODULE ServerModule() {
    HMODULE module = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (::GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&ServerModule), &module) == 0) {
        throw windows::FailureOf(HRESULT_FROM_WIN32(::GetLastError()), "The server's module is unknown");
    }
    return module;
}

std::wstring ServerPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            ::GetModuleFileNameW(ServerModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            throw windows::FailureOf(HRESULT_FROM_WIN32(::GetLastError()), "The server's path is unknown");
        }
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

ServerUse::ServerUse() { LockServer(true); }
ServerUse::~ServerUse() { LockServer(false); }

bool IsServerInUse() { return Uses() > 0; }

void LockServer(bool lock) {
    if (lock) {
        ++Uses();
    } else {
        --Uses();
    }
}

} // namespace qel::server
