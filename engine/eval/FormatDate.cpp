#include "engine/eval/FormatText.h"

#include <fmt/format.h>

#include <array>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace qel::engine {

namespace {

constexpr std::array<std::string_view, 12> months{"January",   "February", "March",    "April",
                                                  "May",       "June",     "July",     "August",
                                                  "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> weekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};

struct Moment {
    std::chrono::year_month_day date;
    unsigned weekday = 0;
    long hours = 0, minutes = 0, seconds = 0;
};

/// Before 1 January 100 and after 31 December 9999 there are no dates.
bool IsDate(double days) { return days >= -657434 && days < 2958466; }

Moment MomentOf(double days) {
    constexpr long secondsOfDay = 86'400;
    double whole = std::floor(days);
    long seconds = std::lround((days - whole) * secondsOfDay);
    if (seconds == secondsOfDay) {
        seconds = 0;
        ++whole;
    }
    using namespace std::chrono;
    const sys_days day = sys_days(year(1899) / December / 30) + std::chrono::days(static_cast<int>(whole));
    return {year_month_day(day), weekday(day).c_encoding(), seconds / 3600, seconds / 60 % 60, seconds % 60};
}

std::string Padded(std::int64_t number, std::size_t width) { return fmt::format("{:0{}}", number, width); }

/// A part of a date by its letter, and how often the letter stands; empty when it is none.
std::string DatePart(const Moment& moment, char letter, std::size_t count, bool afterHours, bool halfDays) {
    const auto month = static_cast<unsigned>(moment.date.month());
    const auto day = static_cast<unsigned>(moment.date.day());
    const long hour = halfDays ? (moment.hours + 11) % 12 + 1 : moment.hours;
    const auto named = [count](std::string_view name) {
        return std::string(count == 3 ? name.substr(0, 3) : name);
    };
    switch (letter) {
    case 'y': {
        const int year = static_cast<int>(moment.date.year());
        return count == 4 ? Padded(year, 4) : count == 2 ? Padded(year % 100, 2) : "";
    }
    case 'm':
        if (afterHours && count < 3) {
            return Padded(moment.minutes, count);
        }
        return count < 3 ? Padded(month, count) : count < 5 ? named(months[month - 1]) : "";
    case 'd':
        return count < 3 ? Padded(day, count) : count < 5 ? named(weekdays[moment.weekday]) : "";
    case 'q':
        return count == 1 ? Padded((month + 2) / 3, 1) : "";
    case 'h':
        return count < 3 ? Padded(hour, count) : "";
    case 'n':
        return count < 3 ? Padded(moment.minutes, count) : "";
    case 's':
        return count < 3 ? Padded(moment.seconds, count) : "";
    default:
        return "";
    }
}

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// Writes a moment along a picture.
class DateWriter {
public:
    DateWriter(Moment moment, std::string_view picture) : moment_(moment), picture_(picture) {
        halfDays_ = picture.find("AM/PM") != std::string_view::npos ||
                    picture.find("am/pm") != std::string_view::npos;
    }

    std::string Write(std::string& fault) {
        for (std::size_t i = 0; i < picture_.size() && fault.empty();) {
            i = WriteAt(i, fault);
        }
        return text_;
    }

private:
    std::size_t WriteAt(std::size_t i, std::string& fault) {
        const char c = picture_[i];
        const std::string_view mark = picture_.substr(i, 5);
        if (mark == "AM/PM" || mark == "am/pm") {
            const bool isMorning = moment_.hours < 12;
            text_ += mark[0] == 'A' ? (isMorning ? "AM" : "PM") : (isMorning ? "am" : "pm");
            return i + mark.size();
        }
        if (c == '"') {
            const std::size_t end = std::min(picture_.find('"', i + 1), picture_.size());
            text_ += picture_.substr(i + 1, end - i - 1);
            return end + 1;
        }
        if (c == '\\') {
            text_ += picture_.substr(i + 1, 1);
            return i + 2;
        }
        if (std::isalpha(static_cast<unsigned char>(c)) != 0) {
            return WritePart(i, fault);
        }
        text_ += c;
        return i + 1;
    }

    std::size_t WritePart(std::size_t i, std::string& fault) {
        const char letter = Lower(picture_[i]);
        std::size_t end = i;
        while (end < picture_.size() && Lower(picture_[end]) == letter) {
            ++end;
        }
        const std::string part = DatePart(moment_, letter, end - i, afterHours_, halfDays_);
        if (part.empty()) {
            fault = fmt::format("a format has no part {} of a date", picture_.substr(i, end - i));
        }
        text_ += part;
        afterHours_ = letter == 'h' || (afterHours_ && letter == 's');
        return end;
    }

    Moment moment_;
    std::string_view picture_;
    bool halfDays_ = false, afterHours_ = false;
    std::string text_;
};

} // namespace

std::string FormatDate(double days, std::string_view picture, std::string& fault) {
    if (!IsDate(days)) {
        fault = fmt::format("{} is no number of days from 30 December 1899 that makes a date", days);
        return {};
    }
    return DateWriter(MomentOf(days), picture).Write(fault);
}

} // namespace qel::engine
