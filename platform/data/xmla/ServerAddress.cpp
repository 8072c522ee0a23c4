#include "platform/data/xmla/ServerAddress.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "text/CaseFold.h"

#include <algorithm>
#include <charconv>
#include <curl/curl.h>
#include <memory>

namespace qel {

namespace {

struct FreeUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct FreeText {
    void operator()(char* text) const { curl_free(text); }
};

/// One part of an address; empty when it is missing.
std::string Part(CURLU* url, CURLUPart part, unsigned int flags = 0) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, flags) != CURLUE_OK) {
        return {};
    }
    const std::unique_ptr<char, FreeText> owner(text);
    return text;
}

/// Whether the host is 127.x.y.z. A name such as "127.0.0.1.example" is not.
bool IsIpv4Loopback(std::string_view host) {
    if (!host.starts_with("127.") || std::count(host.begin(), host.end(), '.') != 3) {
        return false;
    }
    while (!host.empty()) {
        unsigned number = 256;
        const auto part = host.substr(0, host.find('.'));
        const auto [end, failed] = std::from_chars(part.data(), part.data() + part.size(), number);
        if (failed != std::errc() || end != part.data() + part.size() || number > 255) {
            return false;
        }
        host.remove_prefix(std::min(part.size() + 1, host.size()));
    }
    return true;
}

std::string OriginOf(const std::string& scheme, std::string host, const std::string& port) {
    if (host.starts_with("[")) {
        host = "(" + host.substr(1, host.size() - 2) + ")";
    }
    return scheme + "://" + host + (port.empty() ? "" : ":" + port);
}

} // namespace

ServerAddress ParseServerAddress(const std::string& address) {
    const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
    const CURLUcode failed = curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0);
    if (failed != CURLUE_OK) { // the message omits the address, which may hold a password
        throw ServerError(errorBadConnectionText, std::string("The server's address cannot be read: ") +
                                                      curl_url_strerror(failed) + ".");
    }
    ServerAddress parsed;
    parsed.host = FoldCase(Part(url.get(), CURLUPART_HOST));
    const std::string scheme = FoldCase(Part(url.get(), CURLUPART_SCHEME));
    const std::string port = Part(url.get(), CURLUPART_PORT, CURLU_NO_DEFAULT_PORT);
    parsed.origin = OriginOf(scheme, parsed.host, port);
    parsed.isEncrypted = scheme == "https";
    parsed.isLoopback = parsed.host == "localhost" || parsed.host == "[::1]" || IsIpv4Loopback(parsed.host);
    parsed.credentials = {Part(url.get(), CURLUPART_USER, CURLU_URLDECODE),
                          Part(url.get(), CURLUPART_PASSWORD, CURLU_URLDECODE)};
    curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
    curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
    parsed.url = Part(url.get(), CURLUPART_URL);
    return parsed;
}

} // namespace qel
