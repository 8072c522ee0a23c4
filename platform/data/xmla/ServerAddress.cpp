#include "platform/data/xmla/ServerAddress.h"

#include "platform/data/xmla/UrlParts.h"
#include "text/CaseFold.h"

#include <algorithm>
#include <charconv>

namespace qel {

namespace {

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
    const UrlParts parts = ReadUrl(address);
    ServerAddress parsed;
    parsed.url = parts.url;
    parsed.host = FoldCase(parts.host);
    const std::string scheme = FoldCase(parts.scheme);
    parsed.origin = OriginOf(scheme, parsed.host, parts.port);
    parsed.isEncrypted = scheme == "https";
    parsed.isLoopback = parsed.host == "localhost" || parsed.host == "[::1]" || IsIpv4Loopback(parsed.host);
    parsed.credentials = {parts.user, parts.password};
    return parsed;
}

} // namespace qel
