#pragma once

#include "platform/data/xmla/ServerOptions.h"

namespace qel {

struct ChannelRights {
    Credentials credentials;     ///< of the address or, without any, of the user's settings
    bool isPasswordSafe = false; ///< the connection is encrypted or local, or the user allows plain text
};

/// What a channel may send to the server. Raises AutomationError when that is nothing: for a server that the
/// user does not allow, and when a password would travel unencrypted.
ChannelRights RequireMaySend(const ServerAddress& address, const ServerOptions& options);

} // namespace qel
