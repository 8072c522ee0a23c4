#pragma once

#include "examples/ledger/Random.h"
#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <array>
#include <cstddef>
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
    Several ///< any of them together
};
inline constexpr std::size_t selectionShapeCount = 16;

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

/// Draws selections around lines of the ledger, so that most of them sum something.
class RandomSelections {
public:
    RandomSelections(SqlDatabase& database, std::uint64_t seed);

    /// Now and then a member is unknown, or of another line so that nothing may match.
    Selection Draw(SelectionShape shape, DateShape dates, LedgerCube cube);
    /// The parts of one line, all of them together. The dates stay as they are by default.
    Selection DrawParts(const std::vector<SelectionShape>& parts, LedgerCube cube);
    /// The date of the line that the last draw was made around.
    const CalendarDay& LastLineDay() const { return lastLineDay_; }

private:
    using Line = std::array<std::string, 11>; ///< in the order of LineColumn

    Line AnyLine();
    std::string Lookup(const std::string& table, const std::string& column, const std::string& code);
    void RestrictTo(Selection& selection, SelectionShape shape, const Line& line);
    void DrawStructure(Selection& selection, const Line& line);
    void DrawDates(Selection& selection, DateShape dates, const std::string& day);
    CalendarDay Shifted(const std::string& isoDay, std::int64_t days);

    SqlDatabase& database_;
    Random random_;
    std::int64_t lineCount_;
    CalendarDay lastLineDay_;
    SqlStatement line_, structures_;
};

} // namespace qel::ledger
