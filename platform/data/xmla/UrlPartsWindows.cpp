#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/UrlParts.h"
#include "platform/windows/WideText.h"

#include <fmt/format.h>

#include <charconv>
#include <winhttp.h>

namespace qel {

namespace {

std::string PartOf(const wchar_t* text, DWORD length) {
    return text == nullptr ? std::string() : windows::ToUtf8({text, length});
}

/// "%40" as "@".
std::string Decoded(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        const char* const digits = text.data() + i + 1;
        const bool isCode = text[i] == '%' && i + 2 < text.size() &&
                            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        decoded += isCode ? static_cast<char>(byte) : text[i];
        i += isCode ? std::size_t{2} : 0;
    }
    return decoded;
}

} // namespace

UrlParts ReadUrl(const std::string& address) {
    const std::wstring wide = windows::ToWide(address);
    URL_COMPONENTS found = {};
    found.dwStructSize = sizeof found;
    found.dwSchemeLength = found.dwHostNameLength = found.dwUserNameLength = found.dwPasswordLength =
        found.dwUrlPathLength = found.dwExtraInfoLength = static_cast<DWORD>(-1);
    if (::WinHttpCrackUrl(wide.data(), static_cast<DWORD>(wide.size()), 0, &found) == FALSE ||
        found.dwHostNameLength == 0) {
        throw ServerError(errorBadConnectionText,
                          "The server's address cannot be read: it is not http[s]://HOST[:PORT]/PATH.");
    }
    UrlParts parts;
    parts.scheme = PartOf(found.lpszScheme, found.dwSchemeLength);
    parts.host = PartOf(found.lpszHostName, found.dwHostNameLength);
    const INTERNET_PORT own =
        found.nScheme == INTERNET_SCHEME_HTTPS ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
    parts.port = found.nPort == own ? "" : std::to_string(found.nPort);
    parts.user = Decoded(PartOf(found.lpszUserName, found.dwUserNameLength));
    parts.password = Decoded(PartOf(found.lpszPassword, found.dwPasswordLength));
    const std::string path = PartOf(found.lpszUrlPath, found.dwUrlPathLength) +
                             PartOf(found.lpszExtraInfo, found.dwExtraInfoLength);
    parts.url = fmt::format("{}://{}{}{}{}", parts.scheme, parts.host, parts.port.empty() ? "" : ":",
                            parts.port, path.empty() ? "/" : path);
    return parts;
}

} // namespace qel
