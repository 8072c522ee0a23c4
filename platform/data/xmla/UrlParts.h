#pragma once

#include <string>

namespace qel {

struct UrlParts {
    std::string scheme, host;   ///< as they stand; an IPv6 address in brackets
    std::string port;           ///< empty for the scheme's own
    std::string user, password; ///< decoded
    std::string url;            ///< without user and password
};

/// Raises AutomationError (bad connection text) whose description omits the address, which may hold a
/// password.
UrlParts ReadUrl(const std::string& address);

} // namespace qel
