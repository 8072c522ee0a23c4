#include "engine/build/MonthName.h"

#include "text/CaseFold.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qel::engine {

namespace {

struct MonthNames {
    std::string_view english, hebrew;
};
constexpr std::array<MonthNames, 12> months = {{{"january", "ינואר"},
                                                {"february", "פברואר"},
                                                {"march", "מרץ"},
                                                {"april", "אפריל"},
                                                {"may", "מאי"},
                                                {"june", "יוני"},
                                                {"july", "יולי"},
                                                {"august", "אוגוסט"},
                                                {"september", "ספטמבר"},
                                                {"october", "אוקטובר"},
                                                {"november", "נובמבר"},
                                                {"december", "דצמבר"}}};

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

/// Three letters or more from its beginning; a Hebrew name may have the preposition "in" before it.
std::size_t MonthNamed(std::string_view word) {
    constexpr std::string_view in = "ב";
    constexpr std::size_t letters = 3, hebrewBytes = 2;
    const std::string folded = FoldCase(word);
    const std::string_view hebrew = word.starts_with(in) ? word.substr(in.size()) : word;
    for (std::size_t i = 0; i < months.size(); ++i) {
        const bool isEnglish = folded.size() >= letters &&
                               (months[i].english.starts_with(folded) || (folded == "sept" && i == 8));
        const bool isHebrew = hebrew.size() >= letters * hebrewBytes && months[i].hebrew.starts_with(hebrew);
        if (isEnglish || isHebrew) {
            return i + 1;
        }
    }
    return 0;
}

/// Without a last word that has a colon.
std::string_view WithoutTimeOfDay(std::string_view text) {
    const auto colon = text.find(':');
    const auto blank = colon == std::string_view::npos ? colon : text.rfind(' ', colon);
    return text.substr(0, blank);
}

/// The numbers with one "/" between them.
std::string Joined(std::string_view text) {
    std::string joined;
    for (const char c : text) {
        if (c >= '0' && c <= '9') {
            joined += c;
        } else if (std::string_view(" ,./-").find(c) == std::string_view::npos) {
            return {};
        } else if (!joined.empty() && joined.back() != '/') {
            joined += '/';
        }
    }
    return joined;
}

} // namespace

std::optional<NamedMonth> WithMonthNumber(std::string_view text) {
    const std::string_view date = WithoutTimeOfDay(text);
    const auto* const begin = std::find_if(date.begin(), date.end(), IsLetter);
    const auto* const end = std::find_if_not(begin, date.end(), IsLetter);
    const std::size_t month = MonthNamed({begin, end});
    if (month == 0) {
        return std::nullopt;
    }
    const std::string before(date.begin(), begin), behind(end, date.end());
    NamedMonth named;
    named.text = Joined(before + " " + std::to_string(month) + " " + behind);
    named.isFirst = before.find_first_of("0123456789") == std::string::npos;
    return named.text.empty() ? std::nullopt : std::optional(named);
}

} // namespace qel::engine
