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
    /// Scheme, host and, unless it is the scheme's own, port: "http://olap.example:8080". An IPv6 address
    /// stands in parentheses, so that the text can name a section of a settings file.
    std::string origin;
    bool isEncrypted = false; ///< https
    bool isLoopback = false;  ///< this machine itself
    Credentials credentials;
};

/// Parses "http[s]://[user[:password]@]host[:port]/path"; user and password are percent-encoded ("%40").
/// Raises AutomationError (bad connection text) whose description omits the password.
ServerAddress ParseServerAddress(const std::string& address);

} // namespace qel
