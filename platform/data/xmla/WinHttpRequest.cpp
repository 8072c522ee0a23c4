#include "platform/data/xmla/WinHttpRequest.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace qel {

/// What WinHTTP reads and writes on its own threads. It may do so for a while after a request was given up,
/// so the system's handle shares it.
struct WinHttpRequest::Exchange {
    struct CloseEvent {
        void operator()(HANDLE event) const { ::CloseHandle(event); }
    };

    std::unique_ptr<void, CloseEvent> done{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    DWORD error = 0;
    DWORD bytes = 0;
    std::wstring headers;
    std::string body;
    std::array<char, 1U << 15U> piece = {};
};

namespace {

/// A report may come after the last request; then the code must still be there.
void KeepModule(WINHTTP_STATUS_CALLBACK function) {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCWSTR>(function), &module);
}

} // namespace

WinHttpRequest::WinHttpRequest(const InternetHandle& connection, const std::wstring& path, bool isEncrypted)
    : exchange_(std::make_shared<Exchange>()),
      handle_(::WinHttpOpenRequest(connection.get(), L"POST", path.c_str(), nullptr, WINHTTP_NO_REFERER,
                                   WINHTTP_DEFAULT_ACCEPT_TYPES, isEncrypted ? WINHTTP_FLAG_SECURE : 0)) {
    if (!exchange_->done) {
        throw std::bad_alloc();
    }
    if (!handle_) {
        return;
    }
    KeepModule(&TakeNote);
    auto shared = std::make_unique<std::shared_ptr<Exchange>>(exchange_);
    context_ = reinterpret_cast<DWORD_PTR>(shared.get());
    constexpr DWORD reports = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES;
    if (::WinHttpSetStatusCallback(handle_.get(), &TakeNote, reports, 0) != WINHTTP_INVALID_STATUS_CALLBACK &&
        ::WinHttpSetOption(handle_.get(), WINHTTP_OPTION_CONTEXT_VALUE, &context_, sizeof context_) !=
            FALSE) {
        static_cast<void>(shared.release()); // the handle's; TakeNote takes it back
    } else {
        handle_.reset();
    }
}

void CALLBACK WinHttpRequest::TakeNote(HINTERNET /*handle*/, DWORD_PTR context, DWORD status,
                                       LPVOID information, DWORD length) {
    auto* const shared =
        reinterpret_cast<std::shared_ptr<Exchange>*>(context); // NOLINT(performance-no-int-to-ptr)
    if (shared == nullptr) {
        return;
    }
    Exchange& exchange = **shared;
    switch (status) {
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING: { // the last report
        const std::unique_ptr<std::shared_ptr<Exchange>> last(shared);
        return;
    }
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        exchange.error = static_cast<const WINHTTP_ASYNC_RESULT*>(information)->dwError;
        break;
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
        exchange.bytes = *static_cast<const DWORD*>(information);
        break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        exchange.bytes = length;
        break;
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        break;
    default:
        return;
    }
    ::SetEvent(exchange.done.get());
}

DWORD WinHttpRequest::Send(std::wstring headers, std::string body, const Patience& patience) {
    exchange_->headers = std::move(headers);
    exchange_->body = std::move(body);
    const auto size = static_cast<DWORD>(exchange_->body.size());
    return Await(::WinHttpSendRequest(handle_.get(), exchange_->headers.c_str(), static_cast<DWORD>(-1),
                                      exchange_->body.data(), size, size, context_),
                 patience);
}

DWORD WinHttpRequest::ReceiveHead(const Patience& patience) {
    return Await(::WinHttpReceiveResponse(handle_.get(), nullptr), patience);
}

DWORD WinHttpRequest::Read(std::string_view& piece, const Patience& patience) {
    piece = {};
    // Wine fills the memory that it is given before it reports, however slowly the bytes come. So no more is
    // asked for than is there.
    DWORD error = Await(::WinHttpQueryDataAvailable(handle_.get(), nullptr), patience);
    if (error != 0 || exchange_->bytes == 0) {
        return error;
    }
    auto& memory = exchange_->piece;
    const DWORD wanted = std::min(exchange_->bytes, static_cast<DWORD>(memory.size()));
    error = Await(::WinHttpReadData(handle_.get(), memory.data(), wanted, nullptr), patience);
    piece = {memory.data(), error == 0 ? exchange_->bytes : 0};
    return error;
}

DWORD WinHttpRequest::Await(BOOL isStarted, const Patience& patience) const {
    if (isStarted == FALSE) {
        return ::GetLastError();
    }
    constexpr std::int64_t longestSleep = 50; // milliseconds
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            patience.end - std::chrono::steady_clock::now());
        const auto sleep = static_cast<DWORD>(std::clamp<std::int64_t>(left.count(), 0, longestSleep));
        if (::WaitForSingleObject(exchange_->done.get(), sleep) == WAIT_OBJECT_0) {
            return exchange_->error;
        }
        if (patience.isStopped != nullptr && *patience.isStopped) {
            return ERROR_CANCELLED;
        }
        if (left.count() <= 0) {
            return ERROR_WINHTTP_TIMEOUT;
        }
    }
}

} // namespace qel
