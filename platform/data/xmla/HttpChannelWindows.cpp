#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ChannelRights.h"
#include "platform/data/xmla/HttpChannel.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/UrlParts.h"
#include "platform/data/xmla/WinHttpRequest.h"
#include "platform/windows/WideText.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <shlwapi.h>
#include <wincrypt.h>

namespace qel {

namespace {

int Milliseconds(std::chrono::milliseconds time) {
    return static_cast<int>(
        std::clamp<std::int64_t>(time.count(), 1, 1'000'000'000)); // 0 would mean without end
}

void SetNumber(const InternetHandle& handle, DWORD option, DWORD value) {
    ::WinHttpSetOption(handle.get(), option, &value, sizeof value);
}

/// Systems before Windows 8.1 know no automatic proxy, and take the one that was set for WinHTTP.
InternetHandle OpenSession(bool isLoopback) {
    constexpr DWORD automaticProxy = 4; // WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY
    // A proxy would take the password off this machine.
    const DWORD wanted = isLoopback ? WINHTTP_ACCESS_TYPE_NO_PROXY : automaticProxy;
    InternetHandle session;
    for (const DWORD access : {wanted, DWORD{WINHTTP_ACCESS_TYPE_DEFAULT_PROXY}}) {
        if (!session && (!isLoopback || access == wanted)) {
            session.reset(::WinHttpOpen(L"OrmFuncQel4", access, nullptr, nullptr, WINHTTP_FLAG_ASYNC));
        }
    }
    return session;
}

/// Sent at once, in UTF-8. The system would send it in the machine's own code page, and only when it is asked
/// for.
std::wstring Authorization(const Credentials& credentials) {
    const std::string text = credentials.user + ":" + credentials.password;
    const auto* const bytes = reinterpret_cast<const BYTE*>(text.data());
    const auto size = static_cast<DWORD>(text.size());
    constexpr DWORD form = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    DWORD length = 0;
    ::CryptBinaryToStringW(bytes, size, form, nullptr, &length);
    std::wstring encoded(length, L'\0');
    ::CryptBinaryToStringW(bytes, size, form, encoded.data(), &length);
    encoded.resize(length);
    return L"Authorization: Basic " + encoded + L"\r\n";
}

/// Empty when the answer does not have it.
std::string HeaderOf(const InternetHandle& request, DWORD header) {
    std::wstring text(4096, L'\0');
    auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (::WinHttpQueryHeaders(request.get(), header, WINHTTP_HEADER_NAME_BY_INDEX, text.data(), &bytes,
                              WINHTTP_NO_HEADER_INDEX) == FALSE) {
        return {};
    }
    text.resize(bytes / sizeof(wchar_t));
    return windows::ToUtf8(text);
}

/// The address that a redirection names, which may be a path alone.
std::string WholeLocation(const std::string& url, const std::string& location) {
    std::wstring whole(4096, L'\0');
    auto length = static_cast<DWORD>(whole.size());
    if (location.empty() || ::UrlCombineW(windows::ToWide(url).c_str(), windows::ToWide(location).c_str(),
                                          whole.data(), &length, 0) != S_OK) {
        return {};
    }
    whole.resize(length);
    return windows::ToUtf8(whole);
}

HttpHead HeadOf(const InternetHandle& request, const std::string& url) {
    HttpHead head;
    const std::string status = HeaderOf(request, WINHTTP_QUERY_STATUS_CODE);
    std::from_chars(status.data(), status.data() + status.size(), head.status);
    head.contentType = HeaderOf(request, WINHTTP_QUERY_CONTENT_TYPE);
    head.location = WholeLocation(url, HeaderOf(request, WINHTTP_QUERY_LOCATION));
    return head;
}

/// nullopt for a body that ends by itself or with the connection.
std::optional<std::uint64_t> BytesOfBody(const InternetHandle& request) {
    const std::string text = HeaderOf(request, WINHTTP_QUERY_CONTENT_LENGTH);
    std::uint64_t bytes = 0;
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), bytes);
    return failed == std::errc() && end == text.data() + text.size() ? std::optional(bytes) : std::nullopt;
}

std::wstring PathIn(const std::string& url) {
    const auto host = url.find("://") + 3;
    const auto path = std::min(url.find('/', host), url.size());
    return windows::ToWide(url.substr(path, url.find('#', path) - path));
}

/// Also what the system says of certificates: all that lies between them.
bool IsOfTrust(DWORD error) {
    return error == ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED || error == ERROR_WINHTTP_SECURE_CHANNEL_ERROR ||
           error == ERROR_WINHTTP_SECURE_FAILURE || error == ERROR_WINHTTP_SECURE_CERT_DATE_INVALID ||
           error == ERROR_WINHTTP_SECURE_CERT_CN_INVALID || error == ERROR_WINHTTP_SECURE_INVALID_CA ||
           error == ERROR_WINHTTP_SECURE_CERT_REV_FAILED || error == ERROR_WINHTTP_SECURE_INVALID_CERT ||
           error == ERROR_WINHTTP_SECURE_CERT_REVOKED || error == ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE;
}

std::string ReasonOf(DWORD error) {
    switch (error) {
    case ERROR_WINHTTP_NAME_NOT_RESOLVED:
        return "its name is not known";
    case ERROR_WINHTTP_CANNOT_CONNECT:
        return "nothing answers at that port";
    case ERROR_WINHTTP_CONNECTION_ERROR:
        return "the connection was lost";
    default:
        return fmt::format("error {} of the system's HTTP client", error);
    }
}

} // namespace

struct HttpChannel::Handle {
    InternetHandle session, connection;
    bool mayUserLogOn = false; ///< the system may answer a server that asks who the user is
};

HttpChannel::HttpChannel(const ServerAddress& address, const ServerOptions& options)
    : address_(address), limits_(options.limits), isStopped_(options.isStopped),
      handle_(std::make_unique<Handle>()) {
    const ChannelRights rights = RequireMaySend(address, options);
    credentials_ = rights.credentials;
    handle_->mayUserLogOn = credentials_.user.empty() && rights.isPasswordSafe;
    handle_->session = OpenSession(address.isLoopback);
    if (handle_->session) {
        const int connect = Milliseconds(limits_.connect), request = Milliseconds(limits_.request);
        ::WinHttpSetTimeouts(handle_->session.get(), connect, connect, request, request);
        const UrlParts parts = ReadUrl(address.url);
        const INTERNET_PORT own =
            address.isEncrypted ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
        const auto port = parts.port.empty() ? own : static_cast<INTERNET_PORT>(std::stoi(parts.port));
        handle_->connection.reset(
            ::WinHttpConnect(handle_->session.get(), windows::ToWide(parts.host).c_str(), port, 0));
    }
    if (!handle_->connection) {
        Fail(static_cast<int>(::GetLastError()), address.url);
    }
}

HttpChannel::~HttpChannel() = default;

HttpHead HttpChannel::PostOnce(const std::string& url, const std::string& body, const std::string& action,
                               const AnswerSink& take, Clock::time_point end) {
    const auto require = [&](DWORD error) {
        if (error != 0) {
            Fail(static_cast<int>(error), url);
        }
    };
    WinHttpRequest request(handle_->connection, PathIn(url), address_.isEncrypted);
    require(request.Handle() ? 0 : ::GetLastError());
    SetNumber(request.Handle(), WINHTTP_OPTION_DISABLE_FEATURE,
              WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_REDIRECTS);
    SetNumber(request.Handle(), WINHTTP_OPTION_AUTOLOGON_POLICY,
              handle_->mayUserLogOn ? WINHTTP_AUTOLOGON_SECURITY_LEVEL_MEDIUM
                                    : WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH);
    SetNumber(request.Handle(), WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT,
              static_cast<DWORD>(Milliseconds(limits_.request)));
    const Patience patience = {end, isStopped_.get()};
    std::wstring headers = windows::ToWide(
        fmt::format("Content-Type: text/xml; charset=utf-8\r\nSOAPAction: \"{}\"\r\n", action));
    if (!credentials_.user.empty()) {
        headers += Authorization(credentials_);
    }
    require(request.Send(std::move(headers), body, patience));
    require(request.ReceiveHead(patience));
    HttpHead head = HeadOf(request.Handle(), url);
    std::uint64_t received = 0;
    std::string_view piece;
    for (require(request.Read(piece, patience)); !piece.empty(); require(request.Read(piece, patience))) {
        received += piece.size();
        take(head.status, piece);
    }
    require(received < BytesOfBody(request.Handle()).value_or(0) ? ERROR_WINHTTP_INVALID_SERVER_RESPONSE : 0);
    return head;
}

void HttpChannel::Fail(int code, const std::string& url) const {
    const auto error = static_cast<DWORD>(code);
    if (error == ERROR_CANCELLED) {
        throw ServerError(errorServerUnreachable, fmt::format("The request to {} was cancelled.", url));
    }
    if (error == ERROR_WINHTTP_TIMEOUT) {
        throw ServerError(errorServerTimeout, fmt::format("{} did not answer in time.", url));
    }
    if (IsOfTrust(error)) {
        throw ServerError(
            errorServerUnreachable,
            fmt::format("No trusted connection to {} could be made: {}.", url, ReasonOf(error)));
    }
    if (error == ERROR_WINHTTP_INVALID_SERVER_RESPONSE || error == ERROR_WINHTTP_HEADER_SIZE_OVERFLOW) {
        throw ServerError(errorServerAnswer, fmt::format("{} sent an answer that cannot be read.", url));
    }
    throw ServerError(errorServerUnreachable, fmt::format("{} cannot be reached: {}.", url, ReasonOf(error)));
}

} // namespace qel
