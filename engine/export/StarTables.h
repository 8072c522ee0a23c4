#pragma once

#include "engine/storage/FactTable.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::engine {

/// One row of a dimension table.
struct StarRow {
    std::int64_t row = 0; ///< this row's number; in a table of all levels the fact's code
    std::int64_t owner =
        0; ///< the row of the level above that it belongs to; at the first level the fact's code
    std::vector<MemberId> members; ///< one for each of the table's levels
};

/// A table of neighbouring levels of a hierarchy; of none when it only holds the codes.
struct StarTable {
    std::string name;
    std::vector<std::size_t> levels; ///< numbers in Hierarchy::Levels()
    std::vector<StarRow> rows;
};

/// The tables that a hierarchy's members are read from in a star: one table with a row a code where every
/// code has one member on every level. Otherwise a table of the codes and a table a level, each joined to the
/// one before it, so that a code with several members on one level is still counted once in each, and once in
/// their parent. A level of all members has no column. Members without a code get rows with negative codes.
std::vector<StarTable> MakeStarTables(const Hierarchy& hierarchy, const std::string& name);

} // namespace qel::engine
