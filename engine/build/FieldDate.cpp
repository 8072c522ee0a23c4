#include "engine/build/FieldDate.h"

#include "engine/build/MonthName.h"
#include "engine/build/PlainSigns.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace qel::engine {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

struct NumberText {
    int value = 0;
    std::size_t digits = 0;
};

/// The numbers in a date; `count` is 0 for a text that is not a date.
struct DateNumbers {
    std::array<NumberText, 3> numbers;
    std::size_t count = 0;
};

bool IsTimeOfDay(std::string_view text) {
    std::size_t colons = 0;
    for (const char c : text) {
        colons += c == ':' ? 1 : 0;
        if (!IsDigit(c) && std::string_view(":. +-TZAPMapm").find(c) == std::string_view::npos) {
            return false;
        }
    }
    return colons > 0;
}

/// Removes a time of day: what follows a blank or "T" and contains a colon.
std::string_view WithoutTime(std::string_view text) {
    const auto cut = text.find_first_of(" T");
    return cut != std::string_view::npos && IsTimeOfDay(text.substr(cut + 1)) ? text.substr(0, cut) : text;
}

NumberText TakeNumber(std::string_view& text) {
    NumberText number;
    while (number.digits < text.size() && number.digits < 8 && IsDigit(text[number.digits])) {
        number.value = number.value * 10 + (text[number.digits++] - '0');
    }
    text.remove_prefix(number.digits);
    return number;
}

DateNumbers SplitNumbers(std::string_view text) {
    DateNumbers result;
    for (std::size_t i = 0; i < result.numbers.size(); ++i) {
        result.numbers[i] = TakeNumber(text);
        if (result.numbers[i].digits == 0) {
            return {};
        }
        result.count = i + 1;
        if (text.empty()) {
            return result;
        }
        if (std::string_view("-/. ").find(text.front()) == std::string_view::npos) {
            return {};
        }
        text.remove_prefix(1);
    }
    return {};
}

/// 1930 to 2029 for two digits; nothing unless there are two or four digits.
std::optional<int> YearOf(const NumberText& number) {
    if (number.digits == 4) {
        return number.value;
    }
    if (number.digits == 2) {
        return number.value + (number.value < 30 ? 2000 : 1900);
    }
    return std::nullopt;
}

std::optional<std::chrono::sys_days> Day(const NumberText& year, const NumberText& month,
                                         const NumberText& day) {
    const auto fullYear = YearOf(year);
    if (!fullYear || month.digits > 2 || day.digits > 2) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(*fullYear),
                                           std::chrono::month(static_cast<unsigned>(month.value)),
                                           std::chrono::day(static_cast<unsigned>(day.value))};
    constexpr int firstYear = 100;
    if (!date.ok() || *fullYear < firstYear) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date);
}

std::optional<std::chrono::sys_days> EightDigits(int value) {
    constexpr int monthPlace = 100, yearPlace = 10000;
    return Day({value / yearPlace, 4}, {value / monthPlace % monthPlace, 2}, {value % monthPlace, 2});
}

/// A month's name shows the order by its place. Where years need four digits, they do here as well.
DateFormat OrderOf(const NamedMonth& date, DateFormat format) {
    std::size_t digits = 0, longest = 0;
    for (const char c : date.text) {
        digits = IsDigit(c) ? digits + 1 : 0;
        longest = std::max(longest, digits);
    }
    if (format == DateFormat::Iso && longest < 4) {
        return DateFormat::Iso;
    }
    return date.isFirst ? DateFormat::MonthDayYear : DateFormat::DayMonthYear;
}

std::optional<std::chrono::sys_days> ParsePlain(std::string_view text, DateFormat format) {
    const DateNumbers date = SplitNumbers(WithoutTime(text));
    const auto& [a, b, c] = date.numbers;
    const bool yearFirst = a.digits == 4 || format == DateFormat::YearMonthDay;
    if (date.count == 1 && a.digits == 8) {
        return EightDigits(a.value);
    }
    // In the ISO format "31-12-24" must not become a day of the year 1931.
    if (format == DateFormat::Iso && a.digits != 4) {
        return std::nullopt;
    }
    if (date.count == 2) {
        return yearFirst ? Day(a, b, {1, 1}) : Day(b, a, {1, 1});
    }
    if (date.count != 3) {
        return std::nullopt;
    }
    if (yearFirst) {
        return Day(a, b, c);
    }
    return format == DateFormat::DayMonthYear ? Day(c, b, a) : Day(c, a, b);
}

} // namespace

std::optional<std::chrono::sys_days> ParseDate(std::string_view text, DateFormat format) {
    if (const auto day =
            IsAscii(text) ? ParsePlain(text, format) : ParsePlain(WithPlainSigns(text), format)) {
        return day;
    }
    const auto named = WithMonthNumber(WithPlainSigns(text));
    return named ? ParsePlain(named->text, OrderOf(*named, format)) : std::nullopt;
}

std::string FormatDate(std::chrono::sys_days day) {
    const std::chrono::year_month_day date(day);
    return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string DateRemedy(std::string_view text, std::string_view table) {
    std::string fitting;
    for (const auto& [format, name] :
         {std::pair(DateFormat::Iso, "iso"), std::pair(DateFormat::DayMonthYear, "dmy"),
          std::pair(DateFormat::MonthDayYear, "mdy"), std::pair(DateFormat::YearMonthDay, "ymd")}) {
        if (ParseDate(text, format)) {
            fitting += fmt::format("{}\"{}\"", fitting.empty() ? "; set \"dates\": " : " or ", name);
        }
    }
    return fitting.empty() ? fitting : fmt::format("{} in the table \"{}\"", fitting, table);
}

std::string_view ExpectedDate(DateFormat format) {
    switch (format) {
    case DateFormat::DayMonthYear:
        return "a date such as 31/12/2024";
    case DateFormat::MonthDayYear:
        return "a date such as 12/31/2024";
    case DateFormat::YearMonthDay:
        return "a date such as 2024/12/31";
    case DateFormat::Iso:
        break;
    }
    return "a date such as 2024-12-31";
}

} // namespace qel::engine
