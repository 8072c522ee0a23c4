#pragma once

#include "platform/data/xmla/HttpChannel.h"

#include <memory>
#include <mutex>
#include <vector>

namespace qel {

/// The kept-alive connections to one server, as many as there are requests at once. Safe for any number of
/// threads.
class ChannelPool {
public:
    ChannelPool(ServerAddress address, ServerOptions options)
        : address_(std::move(address)), options_(std::move(options)) {}

    const ServerAddress& Address() const { return address_; }
    const ServerLimits& Limits() const { return options_.limits; }
    /// One that nobody else uses.
    std::unique_ptr<HttpChannel> Take();
    /// For the next request. One whose request failed is not given back.
    void Return(std::unique_ptr<HttpChannel> channel);

private:
    ServerAddress address_;
    ServerOptions options_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<HttpChannel>> idle_;
};

} // namespace qel
