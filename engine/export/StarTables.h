#pragma once

#include "engine/storage/FactTable.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::engine {

/// One row of a dimension table.
struct StarRow {
    std::int64_t row = 0;   ///< the row's number; in a table of all levels, the fact's code
    std::int64_t owner = 0; ///< the parent's row in the level above; at the first level, the fact's code
    std::vector<MemberId> members; ///< one per level of the table
};

/// A table of consecutive levels of a hierarchy; without levels it only holds the codes.
struct StarTable {
    std::string name;
    std::vector<std::size_t> levels; ///< indexes into Hierarchy::Levels()
    std::vector<StarRow> rows;
};

/// The tables of a hierarchy's members. When every code has one member on every level, a single table with
/// one row per code. Otherwise a table of the codes and one table per level, each joined to the one before,
/// so that a code with several members on a level counts once in each of them and once in their parent. The
/// All level has no column. Members without a code get rows with negative codes.
std::vector<StarTable> MakeStarTables(const Hierarchy& hierarchy, const std::string& name);

/// Whether the tables are a single one with one row per code.
bool HasOneRowPerCode(const std::vector<StarTable>& tables);

} // namespace qel::engine
