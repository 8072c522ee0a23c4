#pragma once

#include "engine/export/StarTables.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A cube as tables: the facts, and the members of every hierarchy. Names are lower-case Latin letters,
/// digits and '_', each once, short enough for any database.
struct StarSchema {
    const Cube* cube = nullptr;
    std::string factTable;
    std::vector<std::string> keyColumns;     ///< by key column
    std::vector<std::string> measureColumns; ///< by measure
    /// The fact column that is 0 in every row, for dimensions without facts; empty when there are none.
    std::string constantColumn;
    std::vector<std::vector<StarTable>> hierarchies; ///< by hierarchy
};

/// Columns of a star table's level, by the level's place in the table.
std::string IdColumn(std::size_t level);
std::string KeyColumnName(std::size_t level);
std::string NameColumn(std::size_t level);
std::string CaptionColumn(std::size_t level);
inline constexpr const char* rowColumn = "row_id";
inline constexpr const char* ownerColumn = "owner_id";

/// `takenTables` holds the names of other cubes' tables, and afterwards this one's too.
StarSchema MakeStarSchema(const Cube& cube, std::set<std::string>& takenTables);

} // namespace qel::engine
