#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace qel {

/// Whether a request that runs on another thread has ended.
class RequestEnd {
public:
    /// Has a call made by the request's thread when the request ends. False when it has ended before.
    [[nodiscard]] bool CallThen(std::function<void()> call) {
        const std::scoped_lock lock(mutex_);
        call_ = std::move(call);
        return !hasCome_;
    }

    void Come() {
        const std::scoped_lock lock(mutex_);
        hasCome_ = true;
        if (call_) {
            call_();
        }
    }

    bool HasCome() const {
        const std::scoped_lock lock(mutex_);
        return hasCome_;
    }

private:
    mutable std::mutex mutex_; ///< guards both below
    bool hasCome_ = false;
    std::function<void()> call_;
};

} // namespace qel
