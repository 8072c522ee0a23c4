#pragma once

#include "batch/GridPlan.h"
#include "cube/CubeValue.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <optional>

namespace qel::batch {

/// Sends the statements of a plan, a few at a time, and gives every query the answer that its own statement
/// would give.
class GridRunner {
public:
    /// The queries outlive it. Several threads open cellsets on the connection.
    GridRunner(const ProviderConnection& server, std::span<const ModSetCube::ValueQuery> queries)
        : server_(server), queries_(queries), answers_(queries.size()) {}

    /// Queries without an answer stand in a grid that failed, or the server was lost: they are asked by
    /// themselves. Any exception on the way is the answer of the queries that were asked for.
    std::vector<std::optional<ModSetCube::CellAnswer>> Run(GridPlan plan);

private:
    void Work();
    /// False when nothing is left to do.
    bool WorkOnNext();
    void RunGrid(const ValueGrid& grid);
    void Halve(const ValueGrid& grid);
    void RunAlone(std::size_t query);
    /// The exception that is being handled becomes the queries' answer.
    void Fail(std::span<const std::size_t> queries) noexcept;

    ProviderConnection server_;
    std::span<const ModSetCube::ValueQuery> queries_;
    std::mutex mutex_; ///< guards the three below
    std::deque<ValueGrid> grids_;
    std::deque<std::size_t> alone_;
    std::vector<std::optional<ModSetCube::CellAnswer>> answers_; ///< one per query
    std::atomic<int> failedGrids_ = 0;
};

} // namespace qel::batch
