#include "batch/GridRunner.h"

#include "cube/ValueStatement.h"
#include "platform/value/CurrentFailure.h"

#include <system_error>
#include <thread>

namespace qel::batch {

namespace {

using ModSetCube::CellAnswer;

constexpr std::size_t requestsAtOnce = 3;
/// A member that the cube does not have fails its whole grid, which is halved until that member stands alone.
/// With more failures than this, halving would cost more than sending the statements one by one.
constexpr int mostFailedGrids = 40;

/// The queries of a grid, row by row.
std::vector<std::size_t> QueriesOf(const ValueGrid& grid) {
    std::vector<std::size_t> queries;
    for (const auto& row : grid.queries) {
        queries.insert(queries.end(), row.begin(), row.end());
    }
    return queries;
}

/// Some of a grid's rows.
ValueGrid Part(const ValueGrid& grid, std::ptrdiff_t first, std::ptrdiff_t last) {
    ValueGrid part = grid;
    part.rows.assign(grid.rows.begin() + first, grid.rows.begin() + last);
    part.queries.assign(grid.queries.begin() + first, grid.queries.begin() + last);
    return part;
}

} // namespace

std::vector<std::optional<CellAnswer>> GridRunner::Run(GridPlan plan) {
    grids_.assign(std::make_move_iterator(plan.grids.begin()), std::make_move_iterator(plan.grids.end()));
    alone_.assign(plan.alone.begin(), plan.alone.end());
    const std::size_t workers = std::min(requestsAtOnce, grids_.size() + alone_.size());
    {
        std::vector<std::jthread> threads; // joined at the end of the block
        try {
            for (std::size_t i = 1; i < workers; ++i) {
                threads.emplace_back([this] { Work(); });
            }
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): this thread works alone
        }
        Work();
    }
    // What a failed grid left after the other threads had run out of work.
    Work();
    return std::move(answers_);
}

void GridRunner::Work() {
    while (server_.connection->State() == stateOpen && WorkOnNext()) {
    }
}

bool GridRunner::WorkOnNext() {
    std::unique_lock lock(mutex_);
    if (!grids_.empty()) {
        const ValueGrid grid = std::move(grids_.front());
        grids_.pop_front();
        lock.unlock();
        RunGrid(grid);
        return true;
    }
    if (!alone_.empty()) {
        const std::size_t query = alone_.front();
        alone_.pop_front();
        lock.unlock();
        RunAlone(query);
        return true;
    }
    return false;
}

void GridRunner::RunGrid(const ValueGrid& grid) {
    std::vector<std::size_t> queries;
    try {
        queries = QueriesOf(grid);
        switch (AskFor(grid, queries)) {
        case GridFit::Exact:
            return;
        case GridFit::LacksRows:
            return Halve(grid);
        case GridFit::Differs: // a part of such an answer might fit by chance
            return AskAlone(queries);
        }
    } catch (...) {
        Fail(queries);
    }
}

GridFit GridRunner::AskFor(const ValueGrid& grid, std::span<const std::size_t> queries) {
    std::vector<CellAnswer> values;
    const auto cellset = server_.provider.CreateCellset();
    try {
        cellset->Open(ComposeGridStatement(grid), server_.connection);
        const GridFit fit = FitOf(grid, *cellset);
        if (fit != GridFit::Exact) {
            return fit;
        }
        for (std::size_t row = 0; row < grid.rows.size(); ++row) {
            for (std::size_t column = 0; column < grid.spans.size(); ++column) {
                values.emplace_back(
                    cellset->Value({static_cast<std::int32_t>(column), static_cast<std::int32_t>(row)}));
            }
        }
        cellset->Close();
    } catch (const AutomationError&) {
        return GridFit::LacksRows; // a member that the cube does not have, most likely
    }
    const std::scoped_lock lock(mutex_);
    for (std::size_t i = 0; i < queries.size(); ++i) {
        answers_[queries[i]] = std::move(values[i]);
    }
    return GridFit::Exact;
}

void GridRunner::Halve(const ValueGrid& grid) {
    if (grid.rows.size() < 2 || ++failedGrids_ > mostFailedGrids) {
        return AskAlone(QueriesOf(grid));
    }
    const auto count = static_cast<std::ptrdiff_t>(grid.rows.size());
    ValueGrid upper = Part(grid, 0, count / 2), lower = Part(grid, count / 2, count);
    const std::scoped_lock lock(mutex_);
    grids_.push_back(std::move(upper));
    grids_.push_back(std::move(lower));
}

void GridRunner::AskAlone(const std::vector<std::size_t>& queries) {
    const std::scoped_lock lock(mutex_);
    alone_.insert(alone_.end(), queries.begin(), queries.end());
}

void GridRunner::RunAlone(std::size_t query) {
    try {
        auto answer = ModSetCube::ReadCell(server_, ComposeValueStatement(queries_[query]));
        const bool isLost = server_.connection->State() != stateOpen; // a failure says nothing of the query
        if (isLost && std::holds_alternative<AutomationError>(answer)) {
            return;
        }
        const std::scoped_lock lock(mutex_);
        answers_[query] = std::move(answer);
    } catch (...) {
        Fail({&query, 1});
    }
}

void GridRunner::Fail(std::span<const std::size_t> queries) noexcept {
    try {
        const AutomationError failure = CurrentFailure();
        const std::scoped_lock lock(mutex_);
        for (const std::size_t query : queries) {
            answers_[query] = failure;
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): those without an answer are asked by themselves
    }
}

} // namespace qel::batch
