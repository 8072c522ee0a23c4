#include "platform/data/xmla/ChannelRights.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

namespace qel {

namespace {

void RequireAllowed(const ServerAddress& address, ServerAccess access) {
    if (access == ServerAccess::Refused) {
        throw ServerError(
            errorServerNotAllowed,
            fmt::format("Nothing was sent to {}: you refused it. Access=always in its section of "
                        "servers.ini allows it.",
                        address.origin));
    }
    if (access == ServerAccess::Unknown) {
        throw ServerError(
            errorServerNotAllowed,
            fmt::format("Nothing was sent to {0}: it is not a known server. Allow it with "
                        "--allow-server {0}, or for good with Access=always in a section [{0}] of "
                        "servers.ini.",
                        address.origin));
    }
}

} // namespace

ChannelRights RequireMaySend(const ServerAddress& address, const ServerOptions& options) {
    const ServerRights rights = options.rights ? options.rights(address) : ServerRights();
    RequireAllowed(address, rights.access);
    ChannelRights channel = {address.credentials.user.empty() ? rights.credentials : address.credentials,
                             address.isEncrypted || address.isLoopback || rights.sendsPasswordsUnencrypted};
    if (!channel.credentials.user.empty() && !channel.isPasswordSafe) {
        throw ServerError(
            errorServerAccess,
            fmt::format("Nothing was sent to {0}: the password would travel unencrypted. Use https, "
                        "or write PasswordWithoutTls=yes into the section [{0}] of servers.ini.",
                        address.origin));
    }
    return channel;
}

} // namespace qel
