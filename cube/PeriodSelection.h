#pragma once

#include "cube/ThreadState.h"
#include "cube/ValueQuery.h"

#include <optional>

namespace qel::ModSetCube {

/// The days that a call asks for. A zero `from` means the period of `to` alone.
struct DayRange {
    AutomationDate from, to;
};

/// The days as the texts of two dates in the locale's short form have them: to the second. Raises 6 for a
/// number that is no date.
DayRange DaysOf(AutomationDate from, AutomationDate to, const Locale& locale);

/// Brings the days into the cube's dates and takes the time of day from `to`. Returns the call's result when
/// it is known without asking the cube (a range that ends before it starts, or lies outside the cube's
/// dates), otherwise none. Raises 5 for a table whose dates do not ascend.
std::optional<Variant> ClampToCube(const DateTable& table, DayRange& days);

/// The periods that the clamped days cover, or none when they lie outside the table. Raises 9 for an empty
/// table.
std::optional<PeriodSpan> FindPeriods(const DateTable& table, DayRange days);

} // namespace qel::ModSetCube
