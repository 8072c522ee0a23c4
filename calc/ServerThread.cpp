#include "calc/ServerThread.h"

#include "batch/CallBatch.h"

#include <memory>
#include <utility>

namespace qel::calc {

namespace {

/// The calls of a sheet come one right after the other.
constexpr auto moment = std::chrono::milliseconds(20);
constexpr std::size_t mostAtOnce = 20'000;

/// One result per call, in their order; none for a call that is to be evaluated by itself.
std::vector<CallResult> EvaluateTogether(batch::CallBatch& batch, const std::vector<ServerCall>& calls) {
    std::vector<batch::BatchedCall> values;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].value) {
            values.push_back({calls[i].value.get(), &calls[i].locale});
            places.push_back(i);
        }
    }
    std::vector<CallResult> results(calls.size());
    if (values.size() < 2) {
        return results;
    }
    const auto answered = batch.Evaluate(values);
    for (std::size_t i = 0; i < answered.size(); ++i) {
        if (answered[i]) {
            results[places[i]] = answered[i]->value;
        }
    }
    return results;
}

CallResult Evaluate(batch::CallBatch& batch, const ServerCall& call) {
    return call.evaluate(batch.FunctionOf(call.cubeFile, call.cubeName, call.locale));
}

/// What `work` gives, or `otherwise`: no exception may end the thread, and the office with it.
template <class Work, class Result>
Result OrElse(const Work& work, Result otherwise) {
    try {
        return work();
    } catch (...) {
        return otherwise;
    }
}

} // namespace

ServerThread::ServerThread(DataAccess& servers, Answered answered)
    : answered_(std::move(answered)),
      // Made here, where a failure has someone to go to.
      thread_([this, batch = std::make_unique<batch::CallBatch>(servers)] { Work(*batch); }) {}

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

void ServerThread::Work(batch::CallBatch& batch) {
    while (!IsStopped()) {
        const auto calls = TakeCalls();
        auto results = OrElse([&] { return EvaluateTogether(batch, calls); }, std::vector<CallResult>());
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (IsStopped()) {
                return;
            }
            CallResult result = i < results.size() ? std::move(results[i]) : std::nullopt;
            if (!result) {
                result = OrElse([&] { return Evaluate(batch, calls[i]); }, CallResult());
            }
            OrElse([&] { return answered_(calls[i].key, std::move(result)), true; }, false);
        }
    }
}

} // namespace qel::calc
