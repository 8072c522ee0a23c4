#pragma once

#include "platform/data/xmla/ServerOptions.h"

#include <string>

namespace qel::server {

/// Raises AutomationError unless the user allows what the machine's provider would connect to: a file, or a
/// server that servers.ini or the user allows. The user is asked once per server and process, and only in the
/// foreground. Nothing has been sent when it raises.
void RequireAllowedServer(const std::string& connectionText);

/// The same for a server that is asked directly, with the credentials of servers.ini.
ServerRights RightsByPerson(const ServerAddress& address);

/// Asks the user about the server unless that is decided. Raises as RequireAllowedServer, but not when the
/// user refuses.
void AskAboutServer(const ServerAddress& address);

/// What was decided so far, for threads that cannot ask; a server that is not decided is refused.
ServerRights RightsByAnswer(const ServerAddress& address);

} // namespace qel::server
