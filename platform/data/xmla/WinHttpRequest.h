#pragma once

#include "platform/windows/WindowsApi.h"

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <winhttp.h>

namespace qel {

struct CloseInternetHandle {
    void operator()(HINTERNET handle) const { ::WinHttpCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<void, CloseInternetHandle>;

/// How long somebody waits.
struct Patience {
    std::chrono::steady_clock::time_point end;
    const std::atomic<bool>* isStopped = nullptr; ///< optional; ends the waiting, too
};

/// A request of a session that was opened with WINHTTP_FLAG_ASYNC: only such a one ends in time when a server
/// sends a byte now and then. Functions return 0 or an error of the system: ERROR_WINHTTP_TIMEOUT and
/// ERROR_CANCELLED when patience ends. No other function may follow one that failed.
class WinHttpRequest {
public:
    WinHttpRequest(const InternetHandle& connection, const std::wstring& path, bool isEncrypted);

    const InternetHandle& Handle() const { return handle_; }
    DWORD Send(std::wstring headers, std::string body, const Patience& patience);
    DWORD ReceiveHead(const Patience& patience);
    /// An empty piece is the end. A piece is there until the next call.
    DWORD Read(std::string_view& piece, const Patience& patience);

private:
    struct Exchange;
    static void CALLBACK TakeNote(HINTERNET handle, DWORD_PTR context, DWORD status, LPVOID information,
                                  DWORD length);

    DWORD Await(BOOL isStarted, const Patience& patience) const;

    std::shared_ptr<Exchange> exchange_;
    DWORD_PTR context_ = 0; ///< of the handle
    InternetHandle handle_; ///< null when the system has none; closed first
};

} // namespace qel
