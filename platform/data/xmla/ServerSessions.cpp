#include "platform/data/xmla/ServerSessions.h"

#include "platform/data/ConnectionText.h"

namespace qel {

std::shared_ptr<ServerSession> ServerSessions::FindInUse(const std::string& connectionString) {
    const std::scoped_lock lock(mutex_);
    std::erase_if(inUse_, [](const auto& entry) { return entry.second.expired(); });
    const auto failure = slowFailures_.find(connectionString);
    if (failure != slowFailures_.end() && std::chrono::steady_clock::now() < failure->second.until) {
        throw AutomationError(failure->second.error);
    }
    const auto found = inUse_.find(connectionString);
    const auto session = found == inUse_.end() ? nullptr : found->second.lock();
    return session && !session->IsLost() ? session : nullptr;
}

void ServerSessions::Remember(const std::string& connectionString, const AutomationError& error,
                              std::chrono::steady_clock::duration taken) {
    constexpr auto slow = std::chrono::seconds(1);
    const bool isCancelled = options_.isStopped && *options_.isStopped; // which tells nothing of the server
    if (taken < slow || isCancelled) {
        return;
    }
    const std::scoped_lock lock(mutex_);
    slowFailures_.insert_or_assign(connectionString,
                                   SlowFailure{error, std::chrono::steady_clock::now() + taken});
}

std::shared_ptr<ServerSession> ServerSessions::Open(const std::string& connectionString) {
    if (auto session = FindInUse(connectionString)) {
        return session;
    }
    const auto onLoss = [self = weak_from_this(), connectionString](const AutomationError& error,
                                                                    auto taken) {
        if (const auto sessions = self.lock()) {
            sessions->Remember(connectionString, error, taken);
        }
    };
    const ConnectionText text = ParseConnectionText(connectionString);
    auto session = std::make_shared<ServerSession>(ParseServerAddress(text.dataSource), options_,
                                                   text.initialCatalog.value_or(""), onLoss);
    session->RequireCatalog();
    const std::scoped_lock lock(mutex_);
    inUse_[connectionString] = session;
    return session;
}

} // namespace qel
