#pragma once

#include "examples/ledger/Random.h"
#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace qel::ledger {

/// What a random selection restricts besides the OBS structure and the dates.
enum class SelectionShape {
    Nothing,
    Plbs,
    Rh,
    Firm,
    OpeningBalance,
    MoneySet,
    Activity,
    CostCentre,
    Level1,
    Level2,
    Level3,
    Account,
    SuperSum1,
    SuperSum2,
    SuperSum3,
    Several,  ///< any combination
    Level4,   ///< for ledgers with an OBS tree this deep
    ObsNumber ///< only in combinations: one number of the structure
};
inline constexpr std::size_t selectionShapeCount = 16; ///< the ones that every ledger has

/// The kind of period of a random selection.
enum class DateShape {
    WholeMonths,
    UnevenDays,
    OpenStart,
    StartsBeforeTheCube,
    EndsAfterTheCube,
    OutsideTheCube,
    Reversed,
    OneDay,
    Everything
};
inline constexpr std::size_t dateShapeCount = 9;

/// Where random members come from.
enum class Around {
    Line,   ///< a ledger line: frequent members are likelier, and the sum is not empty
    Members ///< accounts, activities, cost centres, OBS leaves and numbers, independently and uniformly
};

/// Draws random selections, most of which match some lines.
class RandomSelections {
public:
    RandomSelections(SqlDatabase& database, std::uint64_t seed);

    /// Draws a selection around a line. Sometimes a member is unknown or taken from another line, so that
    /// nothing may match.
    Selection Draw(SelectionShape shape, DateShape dates, LedgerCube cube);
    /// Combines the parts. Without ObsNumber, all numbers of the structure are selected. Keeps the default
    /// dates.
    Selection DrawParts(const std::vector<SelectionShape>& parts, Around around, LedgerCube cube);

private:
    using Line = std::array<std::string, 11>; ///< in the order of LineColumn

    Line AnyLine();
    Line AnyMembers();
    std::string Lookup(const std::string& table, const std::string& column, const std::string& code);
    void RestrictTo(Selection& selection, SelectionShape shape, const Line& line);
    void DrawStructure(Selection& selection, const Line& line);
    void DrawDates(Selection& selection, DateShape dates, const std::string& day);

    SqlDatabase& database_;
    Random random_;
    std::int64_t lineCount_;
    SqlStatement line_, structures_;
    std::map<std::string, std::vector<std::string>> codes_; ///< by table
};

} // namespace qel::ledger
