// Formats dates in the locale's short form and parses what the platform accepts as a date.

#include "platform/value/AutomationDate.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace qel {

namespace {

constexpr int secondsADay = 24 * 60 * 60;
constexpr int lastYearOf2000s = 29; // two-digit years up to this one are in the 2000s

/// A number in a text, with its count of digits: "05" and "5" differ from "2005".
struct Number {
    int value = 0;
    int digits = 0;
};

class DateReader {
public:
    DateReader(std::string_view text, const Locale& locale) : text_(Trimmed(text)), locale_(locale) {}

    /// The date, or nullopt when the text is not a date.
    std::optional<AutomationDate> Read() {
        if (text_.find(':') < text_.find_first_of("/-. ")) {
            return ReadTimeAlone();
        }
        const auto midnight = ReadDay();
        if (!midnight || AtEnd()) {
            return midnight;
        }
        const auto timeOfDay = ReadTime();
        if (!timeOfDay) {
            return std::nullopt;
        }
        const double days = midnight->days;
        return AutomationDate{days < 0 ? days - *timeOfDay : days + *timeOfDay};
    }

private:
    bool AtEnd() const { return at_ == text_.size(); }

    void SkipBlanks() {
        while (!AtEnd() && text_[at_] == ' ') {
            ++at_;
        }
    }

    std::optional<Number> ReadNumber() {
        Number number;
        for (; !AtEnd() && IsDigit(text_[at_]) && number.digits <= 4; ++at_, ++number.digits) {
            number.value = number.value * 10 + (text_[at_] - '0');
        }
        if (number.digits == 0 || number.digits > 4) {
            return std::nullopt;
        }
        return number;
    }

    /// Skips the separator between two numbers of a date. False when no further number of the date follows.
    bool SkipDateSeparator() {
        const std::size_t start = at_;
        SkipBlanks();
        const bool separated =
            !AtEnd() && (std::string_view("/-.").find(text_[at_]) != std::string_view::npos ||
                         text_[at_] == locale_.dateSeparator);
        if (separated) {
            ++at_;
            SkipBlanks();
            return true;
        }
        const std::size_t next = text_.find_first_not_of("0123456789", at_);
        const bool startsTime = next != std::string_view::npos && text_[next] == ':';
        if (at_ > start && !AtEnd() && IsDigit(text_[at_]) && !startsTime) {
            return true;
        }
        at_ = start;
        return false;
    }

    std::optional<AutomationDate> ReadDay() {
        Number numbers[3];
        int count = 0;
        do {
            const auto number = ReadNumber();
            if (!number) {
                return std::nullopt;
            }
            numbers[count++] = *number;
        } while (count < 3 && SkipDateSeparator());
        if (count == 3) {
            return FromThree(numbers[0], numbers[1], numbers[2]);
        }
        if (count == 2) {
            return FromTwo(numbers[0], numbers[1]);
        }
        return std::nullopt;
    }

    std::optional<AutomationDate> FromThree(Number a, Number b, Number c) const {
        if (CanOnlyBeYear(a)) {
            return FromParts(a, b, c);
        }
        if (locale_.dateOrder == DateOrder::YearMonthDay && c.digits <= 2) {
            return FromParts(a, b, c);
        }
        return locale_.dateOrder == DateOrder::DayMonthYear ? FromParts(c, b, a) : FromParts(c, a, b);
    }

    /// A month and a year, in either order.
    static std::optional<AutomationDate> FromTwo(Number a, Number b) {
        const Number first{1, 1};
        if (CanOnlyBeYear(a)) {
            return FromParts(a, b, first);
        }
        if (CanOnlyBeYear(b)) {
            return FromParts(b, a, first);
        }
        return std::nullopt;
    }

    static bool CanOnlyBeYear(Number number) { return number.digits > 2 || number.value > 31; }

    static std::optional<AutomationDate> FromParts(Number year, Number month, Number day) {
        if (month.value > 12) {
            std::swap(month, day);
        }
        if (year.digits <= 2) {
            year.value += year.value <= lastYearOf2000s ? 2000 : 1900;
        }
        try {
            return DateFromDay({year.value, month.value, day.value});
        } catch (const AutomationError&) {
            return std::nullopt;
        }
    }

    std::optional<AutomationDate> ReadTimeAlone() {
        const auto timeOfDay = ReadTime();
        if (!timeOfDay) {
            return std::nullopt;
        }
        return AutomationDate{*timeOfDay};
    }

    /// "h:mm", "h:mm:ss", with AM or PM, up to the text's end, as a share of the day.
    std::optional<double> ReadTime() {
        SkipBlanks();
        int parts[3] = {};
        int count = 0;
        do {
            const auto number = ReadNumber();
            if (!number) {
                return std::nullopt;
            }
            parts[count++] = number->value;
        } while (count < 3 && SkipColon());
        const bool withHalf = ApplyHalfOfDay(parts[0]);
        if ((count < 2 && !withHalf) || !AtEnd() || parts[0] > 23 || parts[1] > 59 || parts[2] > 59) {
            return std::nullopt;
        }
        return static_cast<double>(parts[0] * 3600 + parts[1] * 60 + parts[2]) / secondsADay;
    }

    bool SkipColon() {
        if (AtEnd() || text_[at_] != ':') {
            return false;
        }
        ++at_;
        return true;
    }

    /// Reads "AM" or "PM". An hour that does not go with it becomes an invalid hour.
    bool ApplyHalfOfDay(int& hour) {
        SkipBlanks();
        const std::string_view rest = text_.substr(at_);
        const bool morning = EqualIgnoringCase(rest, "AM");
        if (!morning && !EqualIgnoringCase(rest, "PM")) {
            return false;
        }
        at_ = text_.size();
        hour = hour > 12 ? 24 : hour % 12 + (morning ? 0 : 12);
        return true;
    }

    std::string_view text_;
    const Locale& locale_;
    std::size_t at_ = 0;
};

void AppendDay(CalendarDay day, const Locale& locale, fmt::memory_buffer& text) {
    const auto out = std::back_inserter(text);
    const char separator = locale.dateSeparator;
    switch (locale.dateOrder) {
    case DateOrder::DayMonthYear:
        fmt::format_to(out, FMT_COMPILE("{:02}{}{:02}{}{:04}"), day.day, separator, day.month, separator,
                       day.year);
        return;
    case DateOrder::MonthDayYear:
        fmt::format_to(out, FMT_COMPILE("{:02}{}{:02}{}{:04}"), day.month, separator, day.day, separator,
                       day.year);
        return;
    case DateOrder::YearMonthDay:
        fmt::format_to(out, FMT_COMPILE("{:04}{}{:02}{}{:02}"), day.year, separator, day.month, separator,
                       day.day);
        return;
    }
}

} // namespace

std::string FormatShortDate(AutomationDate date, const Locale& locale) {
    DayFromDate(date); // raises for an invalid date, before rounding
    double wholeDays = std::trunc(date.days);
    int seconds = static_cast<int>(std::lround(std::fabs(date.days - wholeDays) * secondsADay));
    if (seconds == secondsADay) {
        wholeDays += 1;
        seconds = 0;
    }
    fmt::memory_buffer text;
    AppendDay(DayFromDate({wholeDays}), locale, text);
    if (seconds != 0) {
        fmt::format_to(std::back_inserter(text), " {:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60,
                       seconds % 60);
    }
    return fmt::to_string(text);
}

AutomationDate ParseDate(std::string_view text, const Locale& locale) {
    const auto date = DateReader(text, locale).Read();
    if (!date) {
        throw PlatformError(ErrorNumber::TypeMismatch);
    }
    return *date;
}

} // namespace qel
