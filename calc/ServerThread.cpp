#include "calc/ServerThread.h"

#include "batch/StatementBatch.h"

#include <algorithm>
#include <utility>

namespace qel::calc {

namespace {

/// The calls of a sheet come one right after the other.
constexpr auto moment = std::chrono::milliseconds(20);
constexpr std::size_t mostAtOnce = 20'000;

/// Evaluates calls as the cells of one thread, twice when they can be asked for together: first to learn
/// their statements, then from the answers.
class CallEvaluator {
public:
    explicit CallEvaluator(DataAccess& servers) : batch_(servers), function_({thread_, batch_, locale_}) {}

    void AskTogether(const std::vector<ServerCall>& calls) {
        if (std::count_if(calls.begin(), calls.end(), [](const auto& call) { return call.isValue; }) < 2)
            return;
        batch_.StartCollecting();
        for (const auto& call : calls)
            if (call.isValue)
                Evaluate(call);
        batch_.Run();
    }

    CallResult Evaluate(const ServerCall& call) {
        try {
            locale_ = call.locale;
            return call.evaluate(function_);
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

    void Forget() { batch_.Forget(); }

private:
    Locale locale_;
    batch::StatementBatch batch_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction function_;
};

} // namespace

ServerThread::ServerThread(DataAccess& servers, Answered answered)
    : servers_(servers), answered_(std::move(answered)), thread_([this] { Work(); }) {}

ServerThread::~ServerThread() {
    Stop();
    thread_.join();
}

void ServerThread::Ask(ServerCall call) {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.push_back(std::move(call));
    }
    changed_.notify_one();
}

void ServerThread::Drop(const std::string& key) {
    const std::scoped_lock lock(mutex_);
    std::erase_if(waiting_, [&](const ServerCall& call) { return call.key == key; });
}

void ServerThread::Stop() {
    {
        const std::scoped_lock lock(mutex_);
        isStopped_ = true;
    }
    changed_.notify_one();
}

bool ServerThread::IsStopped() const {
    const std::scoped_lock lock(mutex_);
    return isStopped_;
}

std::vector<ServerCall> ServerThread::TakeCalls() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isStopped_ || !waiting_.empty(); });
    std::size_t seen = 0;
    while (!isStopped_ && seen != waiting_.size() && waiting_.size() < mostAtOnce) {
        seen = waiting_.size();
        changed_.wait_for(lock, moment, [this] { return isStopped_; });
    }
    return isStopped_ ? std::vector<ServerCall>() : std::exchange(waiting_, {});
}

void ServerThread::Work() {
    CallEvaluator evaluator(servers_);
    while (!IsStopped()) {
        const auto calls = TakeCalls();
        evaluator.AskTogether(calls);
        for (const auto& call : calls) {
            if (IsStopped())
                return;
            answered_(call.key, evaluator.Evaluate(call));
        }
        evaluator.Forget();
    }
}

} // namespace qel::calc
