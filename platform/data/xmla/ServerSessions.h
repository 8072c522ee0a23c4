#pragma once

#include "platform/data/xmla/ServerSession.h"

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace qel {

/// The sessions in use, by connection text. Thread-safe.
class ServerSessions : public std::enable_shared_from_this<ServerSessions> {
public:
    explicit ServerSessions(ServerOptions options) : options_(std::move(options)) {}

    /// The session of a connection text, or a new one whose catalog was found on the server. Raises
    /// AutomationError for a text, server or catalog that cannot be opened. A slow failure is cached for as
    /// long as it took, so that thousands of formulas over a silent server do not wait one after the other.
    [[nodiscard]] std::shared_ptr<ServerSession> Open(const std::string& connectionString);

private:
    struct SlowFailure {
        AutomationError error;
        std::chrono::steady_clock::time_point until;
    };

    std::shared_ptr<ServerSession> FindInUse(const std::string& connectionString);
    void Remember(const std::string& connectionString, const AutomationError& error,
                  std::chrono::steady_clock::duration taken);

    ServerOptions options_;
    std::mutex mutex_; ///< guards the two members below
    std::map<std::string, std::weak_ptr<ServerSession>> inUse_;
    std::map<std::string, SlowFailure> slowFailures_;
};

} // namespace qel
