#pragma once

#include "calc/AsyncResult.h"
#include "calc/ServerThread.h"

#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <rtl/ref.hxx>

namespace qel::calc {

/// The results of formulas over servers, which come while the cells wait. A formula that is asked again while
/// it is on its way is not sent twice, and a cell that is calculated because its value came gets that value.
/// Safe for any number of threads; owned by shared pointers.
class AsyncResults : public std::enable_shared_from_this<AsyncResults> {
public:
    using Any = com::sun::star::uno::Any;

    /// Makes the data-access objects of servers; they end their requests once the flag is true. Called when
    /// the first formula asks; raises AutomationError when the user's settings for servers are faulty.
    using MakeServers =
        std::function<std::unique_ptr<DataAccess>(const std::shared_ptr<const std::atomic<bool>>& isStopped)>;

    /// `wake` sees to it that Deliver is called soon on the main thread. It is called on any thread.
    AsyncResults(MakeServers makeServers, std::function<void()> wake);
    ~AsyncResults();
    AsyncResults(const AsyncResults&) = delete;
    AsyncResults& operator=(const AsyncResults&) = delete;

    /// The formula's value if it came a few seconds ago, otherwise the AsyncResult that will tell it.
    Any Ask(ServerCall call);
    /// Tells the cells what has come, for a short time; wakes again when there is more.
    void Deliver();
    /// Ends the requests and the threads. Afterwards nothing is asked any more, and cells that ask wait.
    void Stop();

private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        rtl::Reference<AsyncResult> result;
        ServerThread* thread = nullptr; ///< that of its server
        bool isOnItsWay = false;
        Any value; ///< void before the first one came
        Clock::time_point came;

        bool IsCurrent() const;
    };

    ServerThread& ThreadOf(const std::string& server);
    Entry& EntryOf(const ServerCall& call);
    void Receive(const std::string& key, CallResult result);
    /// The next result that came, put into its entry; none when there is no further one.
    rtl::Reference<AsyncResult> TakeNext(Any& value);
    void Forget(const std::string& key);

    MakeServers makeServers_;
    std::function<void()> wake_;
    std::shared_ptr<std::atomic<bool>> isStopped_ = std::make_shared<std::atomic<bool>>(false);
    std::mutex mutex_; ///< guards what follows
    std::map<std::string, Entry> entries_;
    std::deque<std::pair<std::string, CallResult>> came_;
    std::map<std::string, std::size_t> threadOfServer_;
    std::unique_ptr<DataAccess> servers_; ///< made at the first call
    static constexpr std::size_t mostThreads = 8;
    std::array<std::unique_ptr<ServerThread>, mostThreads> threads_;
};

} // namespace qel::calc
