#pragma once

#include <string>

namespace qel {

struct Credentials {
    std::string user, password;

    bool operator==(const Credentials&) const = default;
};

/// A server's address. Credentials are kept apart from the URL, so that messages can show the URL.
struct ServerAddress {
    std::string url;  ///< without user and password
    std::string host; ///< lower case
    Credentials credentials;
};

/// Parses "http[s]://[user[:password]@]host[:port]/path"; user and password are percent-encoded ("%40").
/// Raises AutomationError (bad connection text) whose description omits the password.
ServerAddress ParseServerAddress(const std::string& address);

} // namespace qel
