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

/// What a drawn selection restricts besides the OBS structure and the dates.
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
    Several,  ///< any of them together
    Level4,   ///< of ledgers whose OBS tree is that deep
    ObsNumber ///< only with others: one number of the structure
};
inline constexpr std::size_t selectionShapeCount = 16; ///< those of every ledger

/// How a drawn selection's dates lie.
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

/// Where drawn members come from.
enum class Around {
    Line,   ///< a line of the ledger: busy members more often, and there is something to sum
    Members ///< accounts, activities, cost centres, OBS and its numbers each for itself and evenly
};

/// Draws selections, most of them so that they sum something.
class RandomSelections {
public:
    RandomSelections(SqlDatabase& database, std::uint64_t seed);

    /// Around a line. Now and then a member is unknown, or of another line so that nothing may match.
    Selection Draw(SelectionShape shape, DateShape dates, LedgerCube cube);
    /// All the parts together; without ObsNumber, all numbers of the structure. The dates stay as they are by
    /// default.
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
