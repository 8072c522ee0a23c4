#include "reason/PeriodNotes.h"

#include "cube/PeriodSelection.h"

#include <algorithm>
#include <array>

namespace qel {

namespace {

using ModSetCube::DateTable;
using ModSetCube::DayRange;

constexpr std::size_t valueArguments = 18;

AutomationDate StartOf(const ValueCall& call) {
    return call.From_Date.IsZero() ? call.To_Date : call.From_Date;
}

bool HasMonths(const DateTable& dates) {
    return std::all_of(dates.CubeDates.begin(), dates.CubeDates.end(),
                       [](AutomationDate date) { return DayFromDate(date).day == 1; });
}

/// The last day of the cube's last period.
AutomationDate LastDay(const DateTable& dates) {
    return HasMonths(dates) ? AutomationDate{AddMonths(dates.CubeMaxDate, 1).days - 1} : dates.CubeMaxDate;
}

/// The first of up to three numbers in a date's text.
std::array<int, 2> FirstNumbers(const std::string& text) {
    std::array<int, 2> numbers = {0, 0};
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size() && count < numbers.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        constexpr int largest = 100'000;
        if (isDigit && numbers[count] < largest) {
            numbers[count] = numbers[count] * 10 + (text[i] - '0');
        } else if (!isDigit && i > 0) {
            ++count;
        }
    }
    return numbers;
}

} // namespace

const char* const dateRules =
    R"(A formula adds whole periods: the cube's months, or its days where it has days. A period counts when its first day
lies within From_Date and To_Date, both included. Of a cube with the months January to April 2024:

From_Date         To_Date     counts
01/01/2024        31/03/2024  January to March
02/01/2024        31/03/2024  February to March, because January starts before From_Date
15/01/2024        15/02/2024  February, the whole of it
15/01/2024        20/01/2024  January, the whole of it: where no period starts, the one of To_Date counts
01/01/2024 10:00  31/03/2024  February to March, because the time of day counts in From_Date
01/01/2024        01/02/2024  January to February, the whole of it: a time of day in To_Date is ignored
(omitted)         29/02/2024  February: without From_Date, the period of To_Date alone
(omitted)         01/04/2024  April
(omitted)         15/04/2024  nothing: To_Date lies behind the first day of the last period
01/04/2024        15/04/2024  April
02/04/2024        30/04/2024  nothing: From_Date lies behind the first day of the last period
01/12/2023        31/01/2024  January: days before the cube's first are left out
01/04/2024        31/12/2024  April: days behind the cube's last are left out
01/12/2022        31/12/2023  nothing: the cube begins later
01/05/2024        31/05/2024  nothing: the cube ends earlier
31/03/2024        01/03/2024  an error, shown as 0: From_Date is later than To_Date
01/01/2024        (omitted)   the same error: an omitted To_Date is earlier than any date
(omitted)         (omitted)   nothing
)";

std::optional<PeriodChoice> ChosenPeriods(const DateTable& dates, const ValueCall& call,
                                          const Locale& locale) {
    DayRange days = ModSetCube::DaysOf(StartOf(call), call.To_Date, locale);
    const DayRange asked = days;
    if (dates.CubeDates.empty() || !dates.earlier.empty() || ModSetCube::ClampToCube(dates, days)) {
        return std::nullopt;
    }
    const auto span = ModSetCube::FindPeriods(dates, days);
    if (!span) {
        return std::nullopt;
    }
    const auto last = std::find(dates.CubeDateNames.begin(), dates.CubeDateNames.end(), span->last);
    const auto lastPlace = static_cast<std::size_t>(last - dates.CubeDateNames.begin());
    const std::size_t firstPlace = lastPlace + 1 - static_cast<std::size_t>(span->count);
    PeriodChoice choice{span->count, dates.CubeDateNames[firstPlace], span->last, {}, {}, {}};
    // Not a conditional expression: if an allocation fails in one, GCC 12 destroys fields that were never
    // made.
    if (span->count == 1) {
        choice.periods = {ReasonCode::OnePeriod, {choice.last}};
    } else {
        choice.periods = {ReasonCode::SeveralPeriods,
                          {std::to_string(choice.count), choice.first, choice.last}};
    }
    choice.rule = {call.From_Date.IsZero() ? ReasonCode::ToDateAlone : ReasonCode::StartsWithin};
    const AutomationDate first = dates.CubeDates[firstPlace];
    if (first < asked.from) {
        choice.notes.push_back({ReasonCode::NoneStarts});
    } else if (firstPlace > 0 && days.from < first) {
        choice.notes.push_back({ReasonCode::LeftOut, {dates.CubeDateNames[firstPlace - 1]}});
    }
    return choice;
}

std::vector<Reason> ReasonsInDates(const DateTable& dates, const ValueCall& call, std::size_t given,
                                   const Locale& locale) {
    const AutomationDate from = StartOf(call);
    if (given < valueArguments) {
        return {{ReasonCode::TooFewArguments, {std::to_string(given), std::to_string(valueArguments)}}};
    }
    if (call.To_Date.IsZero()) {
        return {{ReasonCode::NoToDate}};
    }
    if (from > call.To_Date) {
        return {{ReasonCode::ReversedDates, {from, call.To_Date}}};
    }
    if (dates.CubeDates.empty()) {
        return {{ReasonCode::NoPeriods}};
    }
    if (!dates.earlier.empty()) {
        return {}; // the failure says so
    }
    DayRange days = ModSetCube::DaysOf(from, call.To_Date, locale);
    if (!ModSetCube::ClampToCube(dates, days)) {
        return {};
    }
    if (call.To_Date < dates.CubeMinDate) {
        return {{ReasonCode::DatesBefore, {dates.CubeMinDate}}};
    }
    if (from > LastDay(dates)) {
        return {{ReasonCode::DatesBehind, {dates.CubeMaxDate}}};
    }
    return {{call.From_Date.IsZero() ? ReasonCode::OnlyToDateBehind : ReasonCode::FromDateBehind,
             {FormatShortDate(dates.CubeMaxDate, locale)}}};
}

std::vector<Reason> SwappedDates(const Formula& formula, const ValueCall& call, const Locale& locale) {
    std::vector<Reason> notes;
    const std::array dates = {std::tuple(valueArguments - 2, "From_Date", call.From_Date),
                              std::tuple(valueArguments - 1, "To_Date", call.To_Date)};
    for (const auto& [place, name, date] : dates) {
        if (place >= formula.arguments.size() || !formula.arguments[place].value ||
            !formula.arguments[place].value->Is<std::string>() ||
            locale.dateOrder == DateOrder::YearMonthDay) {
            continue;
        }
        const auto& text = formula.arguments[place].value->As<std::string>();
        const auto [first, second] = FirstNumbers(text);
        constexpr int mostMonths = 12, mostDays = 31;
        const int month = locale.dateOrder == DateOrder::DayMonthYear ? second : first;
        if (first <= mostDays && month > mostMonths) {
            notes.push_back({ReasonCode::SwappedDate, {name, text, date, std::to_string(month)}});
        }
    }
    return notes;
}

} // namespace qel
