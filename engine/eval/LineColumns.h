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
    enum class Kind : std::uint8_t { Key, Name, Caption, Measure, Detail, File, Line };
    std::string name;
    Kind kind = Kind::Key;
    LevelRef level;         ///< of members: those that the fact belongs to
    std::size_t number = 0; ///< of a measure or a detail
    bool isShown = true;    ///< without RETURN
};

/// The columns that RETURN knows by name: the date, the other key columns with their names, the details, the
/// amounts, the place in the ledger. They have the names that the ledger's columns have.
std::vector<LineColumn> KnownLineColumns(const Cube& cube);

/// The column's values in these facts.
std::vector<LineValue> ReadLineColumn(const Cube& cube, const LineColumn& column,
                                      std::span<const LinePlace> places);

} // namespace qel::engine
