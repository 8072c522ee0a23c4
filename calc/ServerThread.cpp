#include "calc/ServerThread.h"

#include "batch/StatementBatch.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace qel::calc {

namespace {

/// The calls of a sheet come one right after the other.
constexpr auto moment = std::chrono::milliseconds(20);
constexpr std::size_t mostAtOnce = 20'000;

/// Evaluates calls, twice when they can be asked for together: first to learn their statements, then from the
/// answers.
class CallEvaluator {
public:
    explicit CallEvaluator(DataAccess& servers) : batch_(servers) {}

    void AskTogether(const std::vector<ServerCall>& calls) {
        if (std::count_if(calls.begin(), calls.end(), [](const auto& call) { return call.isValue; }) < 2) {
            return;
        }
        batch_.StartCollecting();
        for (const auto& call : calls) {
            if (call.isValue) {
                Evaluate(call);
            }
        }
        batch_.Run();
    }

    CallResult Evaluate(const ServerCall& call) {
        try {
            CubeCells& cells = CellsOf(call);
            cells.locale = call.locale;
            return call.evaluate(cells.function);
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

    void Forget() { batch_.Forget(); }

private:
    /// What the cells over one cube share. With one for all cubes, the connection would be opened again at
    /// every change between them, and be gone with the server when answers have come already.
    struct CubeCells {
        explicit CubeCells(DataAccess& batch) : function({state, batch, locale}) {}

        Locale locale;
        ModSetCube::ThreadState state;
        OrmQelFunction function;
    };

    CubeCells& CellsOf(const ServerCall& call) {
        auto& cells = cells_[{call.server, call.cube}];
        if (!cells) {
            cells = std::make_unique<CubeCells>(batch_);
        }
        return *cells;
    }

    batch::StatementBatch batch_;
    std::map<std::pair<std::string, std::string>, std::unique_ptr<CubeCells>> cells_;
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
            if (IsStopped()) {
                return;
            }
            answered_(call.key, evaluator.Evaluate(call));
        }
        evaluator.Forget();
    }
}

} // namespace qel::calc
