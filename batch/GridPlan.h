#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <vector>

namespace qel::batch {

/// So many periods, and the last of them.
struct PeriodsSummed {
    std::string periods, last;

    auto operator<=>(const PeriodsSummed&) const = default;
};

/// One statement that asks for the cells of several value statements: what they sum in its columns, the one
/// member in which they differ in its rows.
struct ValueGrid {
    std::string cubeName, obsSel, measure;
    std::vector<std::string> slicer;
    std::vector<PeriodsSummed> spans; ///< a column each
    std::vector<std::string> rows;    ///< members, as the statements have them
    /// Numbers of the value statements, by row and column.
    std::vector<std::vector<std::size_t>> statements;
};

/// The grid's text. Every cell is computed by the same expression, in the same context, as by its own
/// statement; one period needs no sum.
std::string ComposeGridStatement(const ValueGrid& grid);

struct GridPlan {
    std::vector<ValueGrid> grids;
    std::vector<std::size_t> alone; ///< statements of no grid
};

/// Arranges value statements, each of which should occur once, into dense grids of at least two cells and of
/// a size that a server answers at once. Statements of another kind are alone.
GridPlan PlanGrids(const std::vector<std::string>& statements);

} // namespace qel::batch
