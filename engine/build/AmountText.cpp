#include "engine/build/AmountText.h"

#include <array>
#include <limits>
#include <string>
#include <utility>

namespace qel::engine {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The text with the signs that spreadsheets and right-to-left exports use in place of plain ones replaced.
std::string Plain(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 9> signs = {{
        {"\xC2\xA0", " "},     // no-break blank
        {"\xE2\x80\xAF", " "}, // narrow no-break blank
        {"\xE2\x80\x89", " "}, // thin blank
        {"\xE2\x88\x92", "-"}, // minus
        {"\xE2\x80\x99", "'"}, // apostrophe
        {"\xE2\x80\x8E", ""},  // left-to-right mark
        {"\xE2\x80\x8F", ""},  // right-to-left mark
        {"\xE2\x81\xA6", ""},  // left-to-right isolate
        {"\xE2\x81\xA9", ""},  // its end
    }};
    std::string plain;
    while (!text.empty()) {
        std::string_view replacement = text.substr(0, 1);
        std::size_t length = 1;
        for (const auto& [sign, by] : signs) {
            if (text.substr(0, sign.size()) == sign) {
                replacement = by;
                length = sign.size();
            }
        }
        plain += replacement;
        text.remove_prefix(length);
    }
    return plain;
}

void TrimBlanks(std::string_view& text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
}

/// Takes the sign off; false when the text has two, or half of one. `magnitude` comes back without it.
bool TakeSign(std::string_view& magnitude, bool& isNegative) {
    const bool isOpened = magnitude.front() == '(';
    const bool isClosed = magnitude.back() == ')';
    if (isOpened != isClosed)
        return false;
    const auto isSign = [](char c) { return c == '-' || c == '+'; };
    if (isOpened) {
        isNegative = true;
        magnitude = magnitude.substr(1, magnitude.size() - 2);
    } else if (isSign(magnitude.front())) {
        isNegative = magnitude.front() == '-';
        magnitude.remove_prefix(1);
    } else if (isSign(magnitude.back())) {
        isNegative = magnitude.back() == '-';
        magnitude.remove_suffix(1);
    }
    TrimBlanks(magnitude);
    return true;
}

/// Adds digits to a value that must stay within 63 bits.
class DigitSum {
public:
    bool Add(int digit) {
        constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
        if (value_ > (most - digit) / 10)
            return false;
        value_ = value_ * 10 + digit;
        return true;
    }
    std::int64_t Value() const { return value_; }

private:
    std::int64_t value_ = 0;
};

bool AddWholePart(std::string_view whole, char thousands, DigitSum& sum) {
    std::size_t sinceSeparator = 0;
    bool isGrouped = false;
    for (const char c : whole) {
        if (IsDigit(c)) {
            ++sinceSeparator;
            if (!sum.Add(c - '0'))
                return false;
            continue;
        }
        // The first group has one to three digits, the others have three.
        const bool groupIsRight =
            isGrouped ? sinceSeparator == 3 : sinceSeparator >= 1 && sinceSeparator <= 3;
        if (thousands == 0 || c != thousands || !groupIsRight)
            return false;
        isGrouped = true;
        sinceSeparator = 0;
    }
    return !isGrouped || sinceSeparator == 3;
}

bool AddDecimals(std::string_view digits, std::size_t decimals, DigitSum& sum) {
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (!IsDigit(digits[i]) || (i >= decimals && digits[i] != '0') ||
            (i < decimals && !sum.Add(digits[i] - '0')))
            return false;
    }
    for (std::size_t i = digits.size(); i < decimals; ++i) {
        if (!sum.Add(0))
            return false;
    }
    return true;
}

std::optional<std::int64_t> ParsePlain(std::string_view text, const CsvFormat& format,
                                       std::uint8_t decimals) {
    TrimBlanks(text);
    if (text.empty())
        return 0;
    bool isNegative = false;
    if (!TakeSign(text, isNegative))
        return std::nullopt;
    const auto point = text.find(format.decimal);
    const std::string_view whole = text.substr(0, point);
    const std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
    DigitSum sum;
    if (whole.empty() && fraction.empty())
        return std::nullopt;
    if (!AddWholePart(whole, format.thousands, sum) || !AddDecimals(fraction, decimals, sum))
        return std::nullopt;
    return isNegative ? -sum.Value() : sum.Value();
}

} // namespace

std::optional<std::int64_t> ParseAmount(std::string_view text, const CsvFormat& format,
                                        std::uint8_t decimals) {
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0x80U) != 0)
            return ParsePlain(Plain(text), format, decimals);
    }
    return ParsePlain(text, format, decimals);
}

} // namespace qel::engine
