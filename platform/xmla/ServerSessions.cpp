#include "platform/xmla/ServerSessions.h"

#include "platform/ConnectionText.h"

namespace qel {

std::shared_ptr<ServerSession> ServerSessions::FindInUse(const std::string& connectionString) {
    const std::scoped_lock lock(mutex_);
    std::erase_if(inUse_, [](const auto& entry) { return entry.second.expired(); });
    const auto found = inUse_.find(connectionString);
    const auto session = found == inUse_.end() ? nullptr : found->second.lock();
    return session && !session->IsLost() ? session : nullptr;
}

std::shared_ptr<ServerSession> ServerSessions::Open(const std::string& connectionString) {
    if (auto session = FindInUse(connectionString))
        return session;
    const ConnectionText text = ParseConnectionText(connectionString);
    auto session = std::make_shared<ServerSession>(ParseServerAddress(text.dataSource), options_,
                                                   text.initialCatalog.value_or(""));
    session->RequireCatalog();
    const std::scoped_lock lock(mutex_);
    inUse_[connectionString] = session;
    return session;
}

} // namespace qel
