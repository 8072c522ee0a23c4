#pragma once

#include "engine/eval/LineSelection.h"
#include "engine/eval/MemberSpace.h"
#include "qel/engine/Drillthrough.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// What a column of the facts behind a cell shows.
struct LineColumn {
    enum class Kind : std::uint8_t { Key, Name, Caption, Measure };
    std::string name;
    Kind kind = Kind::Key;
    LevelRef level;          ///< of members: those that the fact belongs to
    std::size_t measure = 0; ///< of an amount
};

/// The columns of a statement without RETURN: the date, the other key columns with their names, the amounts.
/// They have the names that the ledger's columns have.
std::vector<LineColumn> DefaultLineColumns(const Cube& cube);

/// The column's values in these facts.
std::vector<LineValue> ReadLineColumn(const Cube& cube, const LineColumn& column,
                                      std::span<const LinePlace> places);

} // namespace qel::engine
