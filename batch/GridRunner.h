#pragma once

#include "batch/GridAnswer.h"
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

    /// Queries of a grid whose answer does not fit are asked alone. There is no answer when the server was
    /// lost. Any exception on the way is the answer of the queries that were asked for.
    std::vector<std::optional<ModSetCube::CellAnswer>> Run(GridPlan plan);

private:
    void Work();
    /// False when nothing is left to do.
    bool WorkOnNext();
    void RunGrid(const ValueGrid& grid);
    /// Keeps the values of an answer that fits. A failure counts as an answer without some rows.
    GridFit AskFor(const ValueGrid& grid, std::span<const std::size_t> queries);
    void Halve(const ValueGrid& grid);
    void AskAlone(const std::vector<std::size_t>& queries);
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
