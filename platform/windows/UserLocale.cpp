#include "platform/windows/UserLocale.h"

#include "platform/windows/WindowsApi.h"

#include <string>

namespace qel::windows {

namespace {

std::wstring Setting(LCTYPE type) {
    wchar_t text[80]; // the longest setting has 80 characters, the zero at its end included
    const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type, text, 80);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length) - 1) : std::wstring();
}

/// A separator is one ASCII character, or else any kind of blank (French thousands), or missing.
char Separator(LCTYPE type, char missing) {
    const std::wstring text = Setting(type);
    if (text.empty())
        return missing;
    return text.front() < 0x80 ? static_cast<char>(text.front()) : ' ';
}

DateOrder OrderOf(const std::wstring& picture) {
    const auto first = picture.find_first_of(L"dMy");
    if (first != std::wstring::npos && picture[first] == L'M')
        return DateOrder::MonthDayYear;
    if (first != std::wstring::npos && picture[first] == L'y')
        return DateOrder::YearMonthDay;
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
