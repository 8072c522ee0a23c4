#include "cube/PeriodSelection.h"

#include "platform/value/AutomationError.h"

#include <algorithm>
#include <cstdint>

namespace qel::ModSetCube {

namespace {

const char* const startsAfterItsEnd = "#ERR 11111111";

Variant Nothing() { return std::int16_t{0}; }

/// A whole day is the same as a text; a text is made of a time of day alone.
AutomationDate ThroughText(AutomationDate date, const Locale& locale) {
    return WithoutTime(date) == date ? date : ParseDate(FormatShortDate(date, locale), locale);
}

/// The first day of the first period that starts on `from` or later; `from` itself when there is none.
AutomationDate StartOfPeriods(const DateTable& table, AutomationDate from) {
    const auto period = std::lower_bound(table.CubeDates.begin(), table.CubeDates.end(), from);
    return period == table.CubeDates.end() || from.IsZero() ? from : *period;
}

/// Periods are found by halving the table: in one that does not ascend, others would be.
void RequireOrder(const DateTable& table) {
    if (!table.earlier.empty()) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall,
                              "The members of [Date] are not in the order of their dates: " + table.earlier +
                                  " is earlier than the member before it.");
    }
}

/// Counts from the period of `from` up to the one of `to`, which both start periods of the table.
PeriodSpan CountPeriods(const DateTable& table, AutomationDate from, AutomationDate to) {
    const auto& dates = table.CubeDates;
    const auto first = std::lower_bound(dates.begin(), dates.end(), from);
    const auto last = std::lower_bound(first, dates.end(), to);
    return {static_cast<int>(last - first) + 1,
            table.CubeDateNames[static_cast<std::size_t>(last - dates.begin())]};
}

} // namespace

DayRange DaysOf(AutomationDate from, AutomationDate to, const Locale& locale) {
    return {ThroughText(from, locale), ThroughText(to, locale)};
}

std::optional<Variant> ClampToCube(const DateTable& table, DayRange& days) {
    auto& [from, to] = days;
    if (from > to) {
        return startsAfterItsEnd;
    }
    RequireOrder(table);
    to = WithoutTime(to);
    if (from < table.CubeMinDate) {
        if (to < table.CubeMinDate) {
            return Nothing();
        }
        if (!from.IsZero()) {
            from = table.CubeMinDate;
        } else if (to > table.CubeMaxDate) {
            to = table.CubeMaxDate;
            from = to;
        }
    }
    if (to > table.CubeMaxDate) {
        if (from > table.CubeMaxDate) {
            return Nothing();
        }
        to = table.CubeMaxDate;
    }
    return std::nullopt;
}

std::optional<PeriodSpan> FindPeriods(const DateTable& table, DayRange days) {
    const auto& dates = table.CubeDates;
    if (dates.empty()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    AutomationDate from = StartOfPeriods(table, days.from);
    const auto firstAfter = std::upper_bound(dates.begin(), dates.end(), days.to);
    if (firstAfter == dates.begin()) { // the days end before the first period
        return std::nullopt;
    }
    const AutomationDate to = *(firstAfter - 1);
    from = from.IsZero() ? to : std::min(from, to);
    return CountPeriods(table, from, to);
}

} // namespace qel::ModSetCube
