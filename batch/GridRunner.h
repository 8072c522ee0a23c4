#pragma once

#include "batch/GridPlan.h"
#include "batch/StatementBatch.h"

#include <atomic>
#include <deque>
#include <mutex>

namespace qel::batch {

/// Sends the statements of a plan, a few at a time, and gives every value statement its outcome.
class GridRunner {
public:
    GridRunner(DataAccess& provider, std::shared_ptr<Connection> connection,
               const std::vector<std::string>& statements)
        : provider_(provider), connection_(std::move(connection)), statements_(statements) {}

    /// Statements without an outcome were not answered: they stand in a grid that failed, or the server was
    /// lost.
    std::unordered_map<std::string, Outcome> Run(GridPlan plan);

private:
    void Work();
    void RunGrid(ValueGrid grid);
    void Halve(const ValueGrid& grid);
    void RunAlone(std::size_t statement);
    void Keep(std::size_t statement, Outcome outcome);

    DataAccess& provider_;
    std::shared_ptr<Connection> connection_;
    const std::vector<std::string>& statements_;
    std::mutex mutex_; ///< guards the three below
    std::deque<ValueGrid> grids_;
    std::deque<std::size_t> alone_;
    std::unordered_map<std::string, Outcome> outcomes_;
    std::atomic<int> failedGrids_ = 0;
};

} // namespace qel::batch
