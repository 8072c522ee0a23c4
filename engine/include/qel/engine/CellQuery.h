#pragma once

#include "qel/engine/Cellset.h"

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace qel::engine {

/// A member as statements name it: a path in brackets, and the names below it, without brackets.
struct MemberPath {
    std::string_view path; ///< "[Accounts].[AccountCodes].[All]"
    std::array<std::string_view, 2> names;
    std::size_t nameCount = 0;
};

/// What a statement with one cell asks: a measure at a tuple of members, added up over periods and over the
/// members of one more hierarchy.
struct CellQuery {
    std::string_view cube, measure; ///< names, without brackets
    std::span<const MemberPath> members;
    std::string_view periods; ///< the hierarchy of the periods
    std::string_view lastPeriod;
    int periodCount = 0;
    std::string_view summed; ///< the hierarchy of `summedMembers`; empty for none
    std::span<const std::string> summedMembers;
};

/// A cell whose names are resolved and whose facts are found; only the facts remain to be read. Values are
/// not kept. Immutable and thread-safe; valid as long as its cube.
class PlannedCell {
public:
    virtual ~PlannedCell() = default;
    /// Reads the facts. Raises EngineError (DamagedFile).
    virtual CellValue Value() const = 0;
    /// Begins to fetch the facts into the processor's caches. Raises as Value for a cell that was never read.
    virtual void Prefetch() const = 0;
    /// Approximate memory in bytes.
    virtual std::size_t Bytes() const = 0;
};

/// Plans the cell without a statement. Null for all that needs one: names that do not resolve or that a
/// statement would not take as they are, members that share facts, a cube with calculations. The cell is that
/// of the statement `WITH MEMBER periods.DateSel AS 'SUM(LastPeriods(periodCount, lastPeriod), measure)'
/// MEMBER summed.Sel AS 'SUM({summedMembers})' SELECT {DateSel} ON 0 FROM cube WHERE (members, Sel)`. Raises
/// EngineError (DamagedFile).
std::unique_ptr<const PlannedCell> PlanCell(const Cube& cube, const CellQuery& query);

} // namespace qel::engine
