#pragma once

#include "platform/data/xmla/ServerAddress.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace qel {

/// Time and size limits of requests.
struct ServerLimits {
    std::chrono::milliseconds connect{10'000};
    std::chrono::milliseconds request{120'000};        ///< from the first byte sent to the last one received
    std::size_t answerBytes = std::size_t{256} << 20U; ///< after unpacking
    std::size_t textBytes = std::size_t{1} << 20U;     ///< of one element
    std::size_t depth = 64;
};

/// Whether anything may be sent to a server.
enum class ServerAccess : std::uint8_t {
    Unknown, ///< the user was never asked
    Allowed,
    Refused
};

/// What the user has decided about a server.
struct ServerRights {
    ServerAccess access = ServerAccess::Unknown;
    /// Used when the address has none; when both are empty, the user's netrc file is read.
    Credentials credentials = {};
    bool sendsPasswordsUnencrypted = false; ///< otherwise only over TLS or to this machine itself
};

struct ServerOptions {
    ServerLimits limits = {};
    /// Asked before a connection is made. Nothing is sent to a server that is not allowed; without this, none
    /// is.
    std::function<ServerRights(const ServerAddress& address)> rights = {};
    /// Optional. Once true, pending requests fail as if the connection were lost.
    std::shared_ptr<const std::atomic<bool>> isStopped = {};
};

} // namespace qel
