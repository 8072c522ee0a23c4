#include "calc/AsyncResults.h"

#include "calc/CellArguments.h"
#include "text/Text.h"

#include <algorithm>
#include <utility>

namespace qel::calc {

namespace {

/// So long a value answers the cells that are calculated because it came. A later calculation asks anew.
constexpr auto current = std::chrono::seconds(10);
/// So long the office is kept from what a person does.
constexpr auto turn = std::chrono::milliseconds(40);

com::sun::star::uno::Any ForCell(const CallResult& result) {
    try {
        return result ? ToCell(*result) : NoValue();
    } catch (const std::exception&) {
        return NoValue();
    }
}

} // namespace

bool AsyncResults::Entry::IsCurrent() const {
    return !isOnItsWay && value.hasValue() && Clock::now() - came < current;
}

AsyncResults::AsyncResults(MakeServers makeServers, ServerPermission permission, std::function<void()> wake)
    : makeServers_(std::move(makeServers)), permission_(std::move(permission)), wake_(std::move(wake)) {}

AsyncResults::~AsyncResults() { Stop(); }

AsyncResults::Any AsyncResults::Ask(ServerCall call) {
    bool isQuestion = false;
    com::sun::star::uno::Reference<com::sun::star::sheet::XVolatileResult> result;
    {
        const std::scoped_lock lock(mutex_);
        Entry& entry = EntryOf(call);
        if (entry.IsCurrent()) {
            return entry.value;
        }
        if (!entry.isOnItsWay && !*isStopped_) {
            entry.server = &ServerOf(std::string(Trimmed(call.cubeFile)));
            isQuestion = Send(std::move(call));
            entry.isOnItsWay = true;
        }
        result.set(entry.result.get());
    }
    if (isQuestion) {
        wake_();
    }
    return Any(result);
}

AsyncResults::Entry& AsyncResults::EntryOf(const ServerCall& call) {
    Entry& entry = entries_[call.key];
    if (!entry.result.is()) {
        entry.result = rtl::Reference<AsyncResult>(new AsyncResult([mine = weak_from_this(), key = call.key] {
            if (const auto results = mine.lock()) {
                results->Forget(key);
            }
        }));
    }
    return entry;
}

bool AsyncResults::Send(ServerCall call) {
    const std::string address(Trimmed(call.cubeFile));
    Server& server = ServerOf(address);
    server.isDecided = server.isDecided || !permission_.isUndecided(address);
    if (server.isDecided) {
        server.thread->Ask(std::move(call));
        return false;
    }
    server.waiting.push_back(std::move(call));
    return server.waiting.size() == 1;
}

AsyncResults::Server& AsyncResults::ServerOf(const std::string& address) {
    Server& server = serverOf_[address];
    if (server.thread == nullptr) {
        server.thread = &NextThread();
    }
    return server;
}

ServerThread& AsyncResults::NextThread() {
    if (!servers_) {
        servers_ = makeServers_(isStopped_);
    }
    auto& thread = threads_.at((serverOf_.size() - 1) % mostThreads);
    if (!thread) {
        thread = std::make_unique<ServerThread>(*servers_, [this](const std::string& key, CallResult result) {
            Receive(key, std::move(result));
        });
    }
    return *thread;
}

void AsyncResults::Receive(const std::string& key, CallResult result) {
    bool isFirst = false;
    {
        const std::scoped_lock lock(mutex_);
        isFirst = came_.empty();
        came_.emplace_back(key, std::move(result));
    }
    if (isFirst) {
        wake_();
    }
}

rtl::Reference<AsyncResult> AsyncResults::TakeNext(Any& value) {
    const std::scoped_lock lock(mutex_);
    while (!came_.empty() && !*isStopped_) {
        auto [key, result] = std::move(came_.front());
        came_.pop_front();
        const auto found = entries_.find(key);
        if (found == entries_.end()) {
            continue; // nobody waits for it any more
        }
        Entry& entry = found->second;
        entry.isOnItsWay = false;
        entry.came = Clock::now();
        entry.value = value = ForCell(result);
        return entry.result;
    }
    // What nobody ever listened to: a formula that was only tried, in the function wizard.
    std::erase_if(entries_, [](const auto& entry) {
        return !entry.second.isOnItsWay && !entry.second.IsCurrent() && !entry.second.result->HasListeners();
    });
    return {};
}

void AsyncResults::Deliver() {
    const auto end = Clock::now() + turn;
    Any value;
    for (auto result = TakeNext(value); result.is(); result = TakeNext(value)) {
        result->Tell(value);
        if (Clock::now() >= end) {
            wake_();
            return;
        }
    }
    AskPerson();
}

void AsyncResults::AskPerson() {
    if (std::exchange(isAsking_, true)) {
        return; // results that come while the question is open
    }
    while (const auto address = NextUndecided()) {
        permission_.decide(*address);
        Release(*address);
    }
    isAsking_ = false;
}

std::optional<std::string> AsyncResults::NextUndecided() {
    const std::scoped_lock lock(mutex_);
    const auto found = std::find_if(serverOf_.begin(), serverOf_.end(),
                                    [](const auto& entry) { return !entry.second.waiting.empty(); });
    return *isStopped_ || found == serverOf_.end() ? std::nullopt : std::optional(found->first);
}

void AsyncResults::Release(const std::string& address) {
    const std::scoped_lock lock(mutex_);
    Server& server = serverOf_[address];
    server.isDecided = true;
    for (ServerCall& call : std::exchange(server.waiting, {})) {
        if (!*isStopped_) {
            server.thread->Ask(std::move(call)); // of a refused server it fails without a request
        }
    }
}

void AsyncResults::Forget(const std::string& key) {
    const std::scoped_lock lock(mutex_);
    const auto found = entries_.find(key);
    if (found == entries_.end() || found->second.result->HasListeners()) {
        return;
    }
    if (found->second.isOnItsWay) {
        found->second.server->thread->Drop(key);
        std::erase_if(found->second.server->waiting, [&](const ServerCall& call) { return call.key == key; });
    }
    entries_.erase(found);
}

void AsyncResults::Stop() {
    *isStopped_ = true;
    decltype(threads_) ending;
    decltype(entries_) left;
    {
        const std::scoped_lock lock(mutex_);
        ending = std::exchange(threads_, {});
        left = std::exchange(entries_, {});
        for (auto& [address, server] : serverOf_) {
            server.waiting.clear();
        }
        for (auto& thread : ending) {
            if (thread) {
                thread->Stop();
            }
        }
    }
    // Without the lock, which a thread may want before it ends.
    for (auto& thread : ending) {
        thread.reset();
    }
}

} // namespace qel::calc
