#pragma once

#include "platform/data/xmla/HttpChannel.h"

#include <memory>
#include <mutex>
#include <vector>

namespace qel {

/// A pool of kept-alive connections to one server, one per concurrent request. Thread-safe.
class ChannelPool {
public:
    ChannelPool(ServerAddress address, ServerOptions options)
        : address_(std::move(address)), options_(std::move(options)) {}

    const ServerAddress& Address() const { return address_; }
    const ServerLimits& Limits() const { return options_.limits; }
    /// An idle channel, or a new one.
    [[nodiscard]] std::unique_ptr<HttpChannel> Take();
    /// Returns a channel for reuse. A channel whose request failed is dropped instead.
    void Return(std::unique_ptr<HttpChannel> channel);

private:
    ServerAddress address_;
    ServerOptions options_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<HttpChannel>> idle_;
};

} // namespace qel
