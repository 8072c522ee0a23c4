#include "platform/data/ProviderServer.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace qel {

namespace {

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz";
constexpr std::string_view digits = "0123456789";
constexpr std::size_t longestServer = 255;

[[noreturn]] void Refuse(const std::string& fault) { throw AutomationError(errorBadConnectionText, fault); }

bool HasOnly(std::string_view text, std::initializer_list<std::string_view> characters) {
    return std::all_of(text.begin(), text.end(), [&](char c) {
        return std::any_of(characters.begin(), characters.end(),
                           [c](auto set) { return set.find(c) != std::string_view::npos; });
    });
}

/// The data source of a text that has nothing but the component's own properties, each at most once.
std::string_view OnlyDataSource(std::string_view text) {
    constexpr std::array<std::string_view, 5> names = {"Data Source", "Provider", "Initial Catalog",
                                                       "Client Cache Size", "Auto Synch Period"};
    std::array<bool, names.size()> seen{};
    std::string_view source;
    while (!text.empty()) {
        const auto end = std::min(text.find(';'), text.size());
        const std::string_view part = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (part.empty()) {
            continue;
        }
        const auto equals = std::min(part.find('='), part.size());
        const std::string_view name = Trimmed(part.substr(0, equals));
        const auto known = std::find_if(names.begin(), names.end(),
                                        [name](auto own) { return EqualIgnoringCase(name, own); });
        const auto index = static_cast<std::size_t>(known - names.begin());
        if (equals == part.size() || index == names.size() || seen[index]) {
            Refuse("The paths and names of cubes cannot contain ';'.");
        }
        seen[index] = true;
        const std::string_view value = Trimmed(part.substr(equals + 1));
        if (!value.empty() && std::string_view("\"'=").find(value.front()) != std::string_view::npos) {
            Refuse("The path or name of a cube cannot begin with a quotation mark or '='.");
        }
        source = index == 0 ? value : source;
    }
    return source;
}

/// True for "reports:2383".
bool EndsInPort(std::string_view source, std::size_t colon) {
    return HasOnly(source.substr(colon + 1), {digits});
}

/// True for "C:\Cubes\Fin", "C:Fin", "\\files\cubes\Fin", "/cubes/Fin".
bool IsRootedPath(std::string_view source) {
    const bool hasDrive = source.size() > 1 && source[1] == ':' && HasOnly(source.substr(0, 1), {letters}) &&
                          !EndsInPort(source, 1);
    return hasDrive || source.starts_with('\\') || source.starts_with('/');
}

/// The host of "olap.example:8080/xmla?a=b", with brackets if it is an IPv6 address, and ":8080".
std::pair<std::string_view, std::string_view> HostAndPort(std::string_view address) {
    const std::string_view authority = address.substr(0, address.find_first_of("/?#"));
    const auto hostEnd = authority.starts_with('[') ? authority.find(']') + 1 : authority.find(':');
    const std::string_view host = authority.substr(0, hostEnd);
    return {host, authority.substr(host.size())};
}

bool IsPlainHost(std::string_view host) {
    return host.starts_with('[')
               ? host.size() > 2 && HasOnly(host.substr(1, host.size() - 2), {digits, "abcdef:."})
               : !host.empty() && HasOnly(host, {letters, digits, "-._"});
}

bool IsPlainPort(std::string_view port) {
    return port.empty() || (port.size() > 1 && port.front() == ':' && HasOnly(port.substr(1), {digits}));
}

/// Scheme, host and port of a lower-case address.
std::string OriginOf(std::string_view address) {
    constexpr std::string_view afterScheme = "://";
    const auto schemeEnd = address.find(afterScheme);
    const std::string_view scheme = address.substr(0, schemeEnd);
    if (schemeEnd == std::string_view::npos || !HasOnly(scheme, {letters, digits, "+-."})) {
        Refuse("The server's address is written as http://host/path.");
    }
    const auto [host, port] = HostAndPort(address.substr(schemeEnd + afterScheme.size()));
    if (!IsPlainHost(host) || !IsPlainPort(port)) {
        Refuse("The server's address cannot be read. It consists of a host of Latin letters, digits, '-' and "
               "'.', a port and a path, without user and password.");
    }
    const bool isOwnPort = (scheme == "http" && port == ":80") || (scheme == "https" && port == ":443");
    std::string origin = fmt::format("{}://{}{}", scheme, host, isOwnPort ? "" : port);
    std::replace(origin.begin(), origin.end(), '[', '('); // as the name of a section
    std::replace(origin.begin(), origin.end(), ']', ')');
    return origin;
}

/// The server of a lower-case data source that is not empty.
std::optional<std::string> ServerOf(std::string_view source) {
    const auto colon = source.find(':');
    if (IsRootedPath(source)) {
        return std::nullopt;
    }
    if (colon != std::string_view::npos && !EndsInPort(source, colon)) {
        return OriginOf(source);
    }
    if (source.ends_with(".cub")) {
        return std::nullopt;
    }
    // Other letters may have no place in a settings file: two servers would have the same section.
    if (!HasOnly(source, {letters, digits, "-._:\\$"})) {
        Refuse("The data source is neither the path of a cube file (.cub) nor the name of a server.");
    }
    return fmt::format("msolap://{}", source);
}

} // namespace

std::optional<std::string> ServerOfProvider(std::string_view connectionText) {
    const bool hasControls = std::any_of(connectionText.begin(), connectionText.end(),
                                         [](char c) { return static_cast<unsigned char>(c) < ' '; });
    if (hasControls) {
        Refuse("The path or name of a cube contains a control character.");
    }
    const std::string source = FoldCase(OnlyDataSource(connectionText));
    auto server = source.empty() ? std::nullopt : ServerOf(source);
    if (server && server->size() > longestServer) {
        Refuse("The server's address is too long.");
    }
    return server;
}

} // namespace qel
