#pragma once

#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <optional>
#include <utility>

namespace qel::ledger {

/// The first and last day that a formula sums, inclusive.
using DaySpan = std::pair<std::string, std::string>;

/// The days that a selection covers, as ISO dates; nothing when the dates alone make a formula 0. `first` and
/// `last` are the ledger's first and last days.
///
/// By months, a span includes the months that begin in it, or the month of its end when none does. The cube
/// ends with the first day of its last month; a span that starts later is outside.
std::optional<DaySpan> CoveredDays(const Selection& selection, const CalendarDay& first,
                                   const CalendarDay& last);

/// The expected values of formulas, summed by SQLite from the ledger's lines.
class PlainSums {
public:
    explicit PlainSums(SqlDatabase& database);

    /// The sum in cents for amounts, thousandths for quantities, units for lines.
    std::int64_t Sum(const Selection& selection);
    /// The same as the number in a cell.
    double CellValue(const Selection& selection);

private:
    SqlDatabase& database_;
    CalendarDay first_, last_;
};

} // namespace qel::ledger
