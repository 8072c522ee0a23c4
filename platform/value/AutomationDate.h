#pragma once

#include <compare>
#include <string>
#include <string_view>

namespace qel {

/// The order of day, month and year in the locale's short dates.
enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

/// The user's regional settings and the document's that affect what arguments and results mean.
struct Locale {
    DateOrder dateOrder = DateOrder::DayMonthYear;
    char dateSeparator = '/';
    char decimalSeparator = '.';
    char thousandsSeparator = ',';
    double nullDate = 0; ///< the day since which the document's cells count days, as an AutomationDate
};

/// Days since 30 December 1899. The fraction is the time of day, also for negative dates, whose time counts
/// away from zero. The zero date means "no date", as for an omitted date argument.
struct AutomationDate {
    double days = 0;

    bool IsZero() const { return days == 0; }
    auto operator<=>(const AutomationDate& other) const { return days <=> other.days; }
    bool operator==(const AutomationDate&) const = default;
};

struct CalendarDay {
    int year = 1899, month = 12, day = 30;

    bool operator==(const CalendarDay&) const = default;
};

/// Raises 5 for a day that does not exist or lies outside the years 100 to 9999.
AutomationDate DateFromDay(CalendarDay day);
/// The calendar day without the time. Raises 6 outside the years 100 to 9999 and for numbers that are not
/// finite.
CalendarDay DayFromDate(AutomationDate date);
/// The same date without its time of day. Raises as DayFromDate.
AutomationDate WithoutTime(AutomationDate date);
/// The same day `months` later, or the month's last day when the month is shorter.
AutomationDate AddMonths(AutomationDate date, int months);

/// The locale's short form ("31/03/2020"), followed by a blank and the time when there is one.
std::string FormatShortDate(AutomationDate date, const Locale& locale);
/// Parses a date as the platform does: the locale's order; "/", "-", "." or blanks between the numbers;
/// two-digit years (00-29: 2000s, 30-99: 1900s); a four-digit year first; an optional time. An impossible
/// order (31 as a month) is swapped. "3/2020" is 1 March 2020. Raises 13 for any other text.
AutomationDate ParseDate(std::string_view text, const Locale& locale);

} // namespace qel
