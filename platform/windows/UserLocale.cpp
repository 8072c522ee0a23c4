#include "platform/windows/UserLocale.h"

#include "platform/windows/WindowsApi.h"

#include <algorithm>
#include <string>

namespace qel::windows {

namespace {

std::wstring Setting(LCTYPE type) {
    wchar_t text[80]; // the longest setting has 80 characters, including the null
    const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type, text, 80);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length) - 1) : std::wstring();
}

/// A separator is one ASCII character, a blank of any kind (French thousands), or missing.
char Separator(LCTYPE type, char missing) {
    const std::wstring text = Setting(type);
    if (text.empty()) {
        return missing;
    }
    return text.front() < 0x80 ? static_cast<char>(text.front()) : ' ';
}

/// Decided by the first of day, month and year; quoted words and the weekday are skipped.
DateOrder OrderOf(const std::wstring& picture) {
    constexpr std::size_t shortestWeekday = 3; // "ddd"
    bool isQuoted = false;
    for (std::size_t i = 0, run = 1; i < picture.size(); i += run) {
        const auto next = picture.find_first_not_of(picture[i], i);
        run = std::min(next, picture.size()) - i;
        if (picture[i] == L'\'') {
            isQuoted ^= run % 2 == 1;
        }
        if (isQuoted) {
            continue;
        }
        if (picture[i] == L'M') {
            return DateOrder::MonthDayYear;
        }
        if (picture[i] == L'y') {
            return DateOrder::YearMonthDay;
        }
        if (picture[i] == L'd' && run < shortestWeekday) {
            return DateOrder::DayMonthYear;
        }
    }
    return DateOrder::DayMonthYear;
}

} // namespace

Locale UserLocale() {
    return {.dateOrder = OrderOf(Setting(LOCALE_SSHORTDATE)),
            .dateSeparator = Separator(LOCALE_SDATE, '/'),
            .decimalSeparator = Separator(LOCALE_SDECIMAL, '.'),
            .thousandsSeparator = Separator(LOCALE_STHOUSAND, ',')};
}

} // namespace qel::windows
