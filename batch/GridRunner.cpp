#include "batch/GridRunner.h"

#include <thread>

namespace qel::batch {

namespace {

constexpr std::size_t requestsAtOnce = 3;
/// A member that the cube does not have fails the whole of its grid, which is then halved until it stands
/// alone. With more failures than this, that would cost more than sending the statements one by one.
constexpr int mostFailedGrids = 40;

/// Runs a statement over `connection` and hands its open cellset to `read`.
template <class Read>
void WithCellset(DataAccess& provider, const std::shared_ptr<Connection>& connection,
                 const std::string& statement, const Read& read) {
    const auto cellset = provider.CreateCellset();
    cellset->Open(statement, connection);
    read(*cellset);
    cellset->Close();
}

} // namespace

std::unordered_map<std::string, Outcome> GridRunner::Run(GridPlan plan) {
    grids_.assign(std::make_move_iterator(plan.grids.begin()), std::make_move_iterator(plan.grids.end()));
    alone_.assign(plan.alone.begin(), plan.alone.end());
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < std::min(requestsAtOnce, grids_.size() + alone_.size()); ++i) {
        threads.emplace_back([this] { Work(); });
    }
    Work();
    for (auto& thread : threads) {
        thread.join();
    }
    // What was halved by a thread after others had run out of work.
    Work();
    return std::move(outcomes_);
}

void GridRunner::Work() {
    while (connection_->State() == stateOpen) {
        std::unique_lock lock(mutex_);
        if (!grids_.empty()) {
            ValueGrid grid = std::move(grids_.front());
            grids_.pop_front();
            lock.unlock();
            RunGrid(std::move(grid));
        } else if (!alone_.empty()) {
            const std::size_t statement = alone_.front();
            alone_.pop_front();
            lock.unlock();
            RunAlone(statement);
        } else {
            return;
        }
    }
}

void GridRunner::RunGrid(ValueGrid grid) {
    try {
        WithCellset(provider_, connection_, ComposeGridStatement(grid), [&](const Cellset& cellset) {
            for (std::size_t row = 0; row < grid.rows.size(); ++row) {
                for (std::size_t column = 0; column < grid.spans.size(); ++column) {
                    Keep(grid.statements[row][column],
                         cellset.Value({static_cast<std::int32_t>(column), static_cast<std::int32_t>(row)}));
                }
            }
        });
    } catch (const AutomationError&) {
        Halve(grid);
    }
}

/// One row alone is not asked again: each of its statements then tells its own error.
void GridRunner::Halve(const ValueGrid& grid) {
    if (grid.rows.size() < 2 || ++failedGrids_ > mostFailedGrids) {
        return;
    }
    const auto middle = static_cast<std::ptrdiff_t>(grid.rows.size() / 2);
    ValueGrid upper = grid, lower = grid;
    upper.rows.erase(upper.rows.begin() + middle, upper.rows.end());
    upper.statements.erase(upper.statements.begin() + middle, upper.statements.end());
    lower.rows.erase(lower.rows.begin(), lower.rows.begin() + middle);
    lower.statements.erase(lower.statements.begin(), lower.statements.begin() + middle);
    const std::scoped_lock lock(mutex_);
    grids_.push_back(std::move(upper));
    grids_.push_back(std::move(lower));
}

void GridRunner::RunAlone(std::size_t statement) {
    try {
        WithCellset(provider_, connection_, statements_[statement], [&](const Cellset& cellset) {
            Keep(statement, cellset.Value({0, 0}));
        });
    } catch (const AutomationError& error) {
        if (connection_->State() == stateOpen) { // otherwise it says nothing about the statement
            Keep(statement, error);
        }
    }
}

void GridRunner::Keep(std::size_t statement, Outcome outcome) {
    const std::scoped_lock lock(mutex_);
    outcomes_.insert_or_assign(statements_[statement], std::move(outcome));
}

} // namespace qel::batch
