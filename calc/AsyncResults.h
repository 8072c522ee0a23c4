#pragma once

#include "calc/AsyncResult.h"
#include "calc/ServerThread.h"

#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <rtl/ref.hxx>

namespace qel::calc {

/// Who decides whether a server may be asked. A server is named by its address in a formula.
struct ServerPermission {
    /// Whether the person has to be asked about it. Called on any thread; raises AutomationError for faulty
    /// settings.
    std::function<bool(const std::string& server)> isUndecided;
    /// Asks the person, on the main thread, unless the server is decided by now. Raises nothing. The office
    /// may deliver results meanwhile.
    std::function<void(const std::string& server)> decide;
};

/// The results of formulas over servers, which come while the cells wait. A formula that is asked again while
/// it is on its way is not sent twice, and a cell that is calculated because its value came gets that value.
/// Formulas over an unknown server wait until the user has answered.
/// Safe for any number of threads; owned by shared pointers.
class AsyncResults : public std::enable_shared_from_this<AsyncResults> {
public:
    using Any = com::sun::star::uno::Any;

    /// Makes the data-access objects of servers; they end their requests once the flag is true. Called when
    /// the first formula asks; raises AutomationError when the user's settings for servers are faulty.
    using MakeServers =
        std::function<std::unique_ptr<DataAccess>(const std::shared_ptr<const std::atomic<bool>>& isStopped)>;

    /// `wake` sees to it that Deliver is called soon on the main thread. It is called on any thread.
    AsyncResults(MakeServers makeServers, ServerPermission permission, std::function<void()> wake);
    ~AsyncResults();
    AsyncResults(const AsyncResults&) = delete;
    AsyncResults& operator=(const AsyncResults&) = delete;

    /// The formula's value if it came a few seconds ago, otherwise the AsyncResult that will tell it.
    Any Ask(ServerCall call);
    /// Tells the cells what has come, for a short time; wakes again when there is more. Asks the person about
    /// servers when nothing is left to tell.
    void Deliver();
    /// Ends the requests and the threads. Afterwards nothing is asked any more, and cells that ask wait.
    void Stop();

private:
    using Clock = std::chrono::steady_clock;
    struct Server {
        ServerThread* thread = nullptr;
        bool isDecided = false;
        std::vector<ServerCall> waiting; ///< for the person's decision
    };
    struct Entry {
        rtl::Reference<AsyncResult> result;
        Server* server = nullptr;
        bool isOnItsWay = false;
        Any value; ///< void before the first one came
        Clock::time_point came;

        bool IsCurrent() const;
    };

    /// Gives the call to the server's thread, or lets it wait for a decision. True when the main thread has
    /// to be woken to ask for that.
    bool Send(ServerCall call);
    Server& ServerOf(const std::string& address);
    ServerThread& NextThread();
    void AskPerson();
    /// A server whose formulas wait for a decision.
    std::optional<std::string> NextUndecided();
    void Release(const std::string& address);
    Entry& EntryOf(const ServerCall& call);
    void Receive(const std::string& key, CallResult result);
    /// The next result that came, put into its entry; none when there is no further one.
    rtl::Reference<AsyncResult> TakeNext(Any& value);
    void Forget(const std::string& key);

    MakeServers makeServers_;
    ServerPermission permission_;
    std::function<void()> wake_;
    bool isAsking_ = false; ///< used on the main thread alone
    std::shared_ptr<std::atomic<bool>> isStopped_ = std::make_shared<std::atomic<bool>>(false);
    std::mutex mutex_; ///< guards what follows
    std::map<std::string, Entry> entries_;
    std::deque<std::pair<std::string, CallResult>> came_;
    std::map<std::string, Server> serverOf_; ///< by address
    std::unique_ptr<DataAccess> servers_;    ///< made at the first call
    static constexpr std::size_t mostThreads = 8;
    std::array<std::unique_ptr<ServerThread>, mostThreads> threads_;
};

} // namespace qel::calc
