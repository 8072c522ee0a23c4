#pragma once

#include <compare>
#include <string>
#include <string_view>

namespace qel {

/// The order of day, month and year in the locale's short dates.
enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

/// The user's regional settings, as far as texts of arguments and results depend on them.
struct Locale {
    DateOrder dateOrder = DateOrder::DayMonthYear;
    char dateSeparator = '/';
    char decimalSeparator = '.';
    char thousandsSeparator = ',';
};

/// Days since 30 December 1899, the fraction being the time of day (for a negative date too, away from
/// midnight). The zero date stands for "no date": it is what an omitted date argument holds.
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
/// The calendar day, without the time. Raises 6 outside the years 100 to 9999, or for a number that is not
/// finite.
CalendarDay DayFromDate(AutomationDate date);
/// The same date without its time of day.
AutomationDate WithoutTime(AutomationDate date);
/// The same day `months` later; a day that the month lacks becomes the month's last.
AutomationDate AddMonths(AutomationDate date, int months);

/// The locale's short form ("31/03/2020"), followed by a blank and the time when there is one.
std::string FormatShortDate(AutomationDate date, const Locale& locale);
/// Reads a date as the platform does: the locale's order, any of / - . and blanks between the numbers,
/// two-digit years (00-29: 2000s, 30-99: 1900s), four-digit year first, an optional time; an order that
/// cannot be (31 as a month) is tried the other way round. "3/2020" is the first of March. Raises 13 for any
/// other text.
AutomationDate ParseDate(std::string_view text, const Locale& locale);

} // namespace qel
