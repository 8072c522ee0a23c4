#include "platform/value/AutomationDate.h"

#include "platform/value/AutomationError.h"

#include <chrono>
#include <cmath>

namespace qel {

namespace {

using std::chrono::year_month_day;

constexpr int firstYear = 100;
constexpr int lastYear = 9999;
constexpr double firstDay = -657434;     // 1 January 100
constexpr double dayAfterLast = 2958466; // 1 January 10000
constexpr std::chrono::sys_days epoch = std::chrono::year{1899} / 12 / 30;

year_month_day ToCivil(CalendarDay day) {
    return std::chrono::year{day.year} / std::chrono::month{static_cast<unsigned>(day.month)} /
           std::chrono::day{static_cast<unsigned>(day.day)};
}

bool Exists(CalendarDay day) {
    return day.year >= firstYear && day.year <= lastYear && day.month >= 1 && day.month <= 12 &&
           day.day >= 1 && day.day <= 31 && ToCivil(day).ok();
}

int LastDayOfMonth(int year, int month) {
    const auto last =
        std::chrono::year{year} / std::chrono::month{static_cast<unsigned>(month)} / std::chrono::last;
    return static_cast<int>(static_cast<unsigned>(last.day()));
}

} // namespace

AutomationDate DateFromDay(CalendarDay day) {
    if (!Exists(day)) {
        throw PlatformError(ErrorNumber::InvalidProcedureCall);
    }
    return {static_cast<double>((std::chrono::sys_days(ToCivil(day)) - epoch).count())};
}

AutomationDate WithoutTime(AutomationDate date) {
    const double wholeDays = std::trunc(date.days);
    if (!(wholeDays >= firstDay && wholeDays < dayAfterLast)) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    return {wholeDays + 0.0}; // never -0
}

CalendarDay DayFromDate(AutomationDate date) {
    const year_month_day civil(epoch + std::chrono::days(static_cast<int>(WithoutTime(date).days)));
    return {static_cast<int>(civil.year()), static_cast<int>(static_cast<unsigned>(civil.month())),
            static_cast<int>(static_cast<unsigned>(civil.day()))};
}

AutomationDate AddMonths(AutomationDate date, int months) {
    CalendarDay day = DayFromDate(date);
    const double timeOfDay = std::fabs(date.days - std::trunc(date.days));
    const int monthsSinceYearZero = day.year * 12 + day.month - 1 + months;
    day.year = monthsSinceYearZero / 12;
    day.month = monthsSinceYearZero % 12 + 1;
    if (day.year < firstYear || day.year > lastYear) {
        throw PlatformError(ErrorNumber::InvalidProcedureCall);
    }
    const int lastDay = LastDayOfMonth(day.year, day.month);
    if (day.day > lastDay) {
        day.day = lastDay;
    }
    const double midnight = DateFromDay(day).days;
    return {midnight < 0 ? midnight - timeOfDay : midnight + timeOfDay};
}

} // namespace qel
