#pragma once

#include "engine/export/StarTables.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A cube as a star schema: a fact table and the members of every hierarchy. Names consist of lower-case
/// Latin letters, digits and '_', are unique, and short enough for any database.
struct StarSchema {
    const Cube* cube = nullptr;
    std::string factTable;
    std::vector<std::string> keyColumns;     ///< by key column
    std::vector<std::string> measureColumns; ///< by measure
    /// The fact column that is always 0, for dimensions without facts; empty when there are none.
    std::string constantColumn;
    std::vector<std::vector<StarTable>> hierarchies; ///< by hierarchy
};

/// Column names of a level, by the level's position in its table.
std::string IdColumn(std::size_t level);
std::string KeyColumnName(std::size_t level);
std::string NameColumn(std::size_t level);
std::string CaptionColumn(std::size_t level);
inline constexpr const char* rowColumn = "row_id";
inline constexpr const char* ownerColumn = "owner_id";

/// `takenTables` are the table names of other cubes; those of this cube are added.
StarSchema MakeStarSchema(const Cube& cube, std::set<std::string>& takenTables);

} // namespace qel::engine
