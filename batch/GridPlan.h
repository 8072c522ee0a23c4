#pragma once

#include "cube/ValueQuery.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qel::batch {

/// A member on a grid's rows.
struct GridRow {
    std::string member;        ///< as the statements have it: "[Accounts].[AccountCodes].[All].[4000]"
    std::string level;         ///< of a summary group, which has it in its path; otherwise empty
    std::size_t nameCount = 1; ///< how many names at the end of the path are the member's own

    bool operator==(const GridRow& other) const { return member == other.member; }
};

/// One statement that asks for the cells of several queries: what they sum in its columns, the one member in
/// which they differ in its rows.
struct ValueGrid {
    std::string cubeName, measure;
    std::shared_ptr<const ModSetCube::ObsMembers> obsMembers; ///< as in the queries
    std::vector<std::string> slicer;                          ///< what the queries have in common
    std::vector<ModSetCube::PeriodSpan> spans;                ///< one per column
    std::vector<GridRow> rows;
    /// Numbers of the queries, by row and column.
    std::vector<std::vector<std::size_t>> queries;
};

/// The members of the grid's columns: a period, or a calculated member that sums several.
std::vector<std::string> ColumnsOf(const ValueGrid& grid);

/// The grid's text. Every cell is computed by the same expression, in the same context, as by its own
/// statement; one period needs no sum.
std::string ComposeGridStatement(const ValueGrid& grid);

struct GridPlan {
    std::vector<ValueGrid> grids;
    std::vector<std::size_t> alone; ///< queries of no grid
};

/// Arranges queries, each of which should occur once, into dense grids of at least two cells and of a size
/// that a server answers at once.
GridPlan PlanGrids(std::span<const ModSetCube::ValueQuery> queries);

} // namespace qel::batch
