#include "platform/data/xmla/ChannelPool.h"

namespace qel {

std::unique_ptr<HttpChannel> ChannelPool::Take() {
    {
        const std::scoped_lock lock(mutex_);
        if (!idle_.empty()) {
            auto channel = std::move(idle_.back());
            idle_.pop_back();
            return channel;
        }
    }
    return std::make_unique<HttpChannel>(address_, options_);
}

void ChannelPool::Return(std::unique_ptr<HttpChannel> channel) {
    const std::scoped_lock lock(mutex_);
    idle_.push_back(std::move(channel));
}

} // namespace qel
