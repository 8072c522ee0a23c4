#pragma once

#include "calc/ServerCall.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace qel::batch {
class CallBatch;
}

namespace qel::calc {

/// What a call gave; none when it failed.
using CallResult = std::optional<Variant>;

/// Evaluates calls over servers on a thread of its own. Those that come within a moment are asked for
/// together, in as few statements as their cells fit into.
class ServerThread {
public:
    /// Told on that thread, once for each call that is not dropped.
    using Answered = std::function<void(const std::string& key, CallResult result)>;

    /// The data-access objects outlive the thread.
    ServerThread(DataAccess& servers, Answered answered);
    /// Waits for the request under way; see Stop.
    ~ServerThread();
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;

    void Ask(ServerCall call);
    /// The call is not evaluated any more when it has not begun.
    void Drop(const std::string& key);
    /// No further call is begun or answered. Ends a request under way only when `servers` ends it.
    void Stop();

private:
    void Work(batch::CallBatch& batch);
    /// Waits for calls, and a moment for further ones. None when the thread shall end.
    std::vector<ServerCall> TakeCalls();
    bool IsStopped() const;

    Answered answered_;
    mutable std::mutex mutex_; ///< guards the two below
    std::vector<ServerCall> waiting_;
    bool isStopped_ = false;
    std::condition_variable changed_;
    std::thread thread_;
};

} // namespace qel::calc
