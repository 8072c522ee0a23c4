#pragma once

#include <string>

namespace qel {

struct Credentials {
    std::string user, password;

    bool operator==(const Credentials&) const = default;
};

/// Where a server answers. Credentials that stood in the address are apart from it, so that the rest can be
/// shown.
struct ServerAddress {
    std::string url;  ///< without user and password
    std::string host; ///< lower case
    Credentials credentials;
};

/// Reads "http[s]://[user[:password]@]host[:port]/path"; characters of user and password that an address
/// cannot hold stand as "%40" and the like. Raises AutomationError (bad connection text), without the
/// password in it.
ServerAddress ParseServerAddress(const std::string& address);

} // namespace qel
