#pragma once

#include "platform/xmla/ServerSession.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace qel {

/// The sessions that are in use, by connection text. Safe for any number of threads.
class ServerSessions {
public:
    explicit ServerSessions(ServerOptions options) : options_(std::move(options)) {}

    /// The one of that text, or a new one whose catalog the server is known to have. Raises AutomationError
    /// for a text, server or catalog that cannot be opened.
    std::shared_ptr<ServerSession> Open(const std::string& connectionString);

private:
    std::shared_ptr<ServerSession> FindInUse(const std::string& connectionString);

    ServerOptions options_;
    std::mutex mutex_;
    std::map<std::string, std::weak_ptr<ServerSession>> inUse_;
};

} // namespace qel
