#include "function/formula/DateFunction.h"

#include "platform/value/AutomationError.h"

#include <cmath>

namespace qel {

namespace {

constexpr int monthsPerYear = 12;
/// Beyond it no combination of arguments gives a date of the calendar.
constexpr double largestArgument = 4'000'000;

int WholePart(double argument) {
    if (!(std::abs(argument) <= largestArgument)) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    return static_cast<int>(std::trunc(argument));
}

} // namespace

AutomationDate DateOf(double year, double month, double day) {
    constexpr int firstYear = 1900;
    constexpr int lastYear = 9999;
    int wholeYear = WholePart(year);
    if (wholeYear >= 0 && wholeYear < firstYear) {
        wholeYear += firstYear;
    }
    const int months = wholeYear * monthsPerYear + WholePart(month) - 1;
    const int monthOfYear = (months % monthsPerYear + monthsPerYear) % monthsPerYear;
    const int actualYear = (months - monthOfYear) / monthsPerYear;
    if (actualYear < firstYear || actualYear > lastYear) {
        throw PlatformError(ErrorNumber::InvalidProcedureCall);
    }
    auto date = DateFromDay({actualYear, monthOfYear + 1, 1});
    date.days += WholePart(day) - 1;
    const int resultYear = DayFromDate(date).year;
    if (resultYear < firstYear || resultYear > lastYear) {
        throw PlatformError(ErrorNumber::InvalidProcedureCall);
    }
    return date;
}

} // namespace qel
