#pragma once

#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <optional>
#include <utility>

namespace qel::ledger {

/// The first and last day that a formula sums, both included.
using DaySpan = std::pair<std::string, std::string>;

/// The days of the ledger that a selection covers, as ISO dates; none when a formula gives 0 for its dates
/// alone. `first` and `last` are the ledger's first and last days.
///
/// By months, a span counts the months that begin in it; when no month begins in it, the month of its end.
/// The cube ends with the first day of its last month: a span that starts later is outside.
std::optional<DaySpan> CoveredDays(const Selection& selection, const CalendarDay& first,
                                   const CalendarDay& last);

/// What a formula must give, as SQLite sums it from the ledger's lines.
class PlainSums {
public:
    explicit PlainSums(SqlDatabase& database);

    /// Amounts in cents, quantities in thousandths, lines as they are.
    std::int64_t Sum(const Selection& selection);
    /// The same as the number that a cell shows.
    double CellValue(const Selection& selection);

private:
    SqlDatabase& database_;
    CalendarDay first_, last_;
};

} // namespace qel::ledger
