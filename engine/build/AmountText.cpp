#include "engine/build/AmountText.h"

#include "engine/build/PlainSigns.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace qel::engine {

namespace {

/// The ways to write a currency, the one for messages first.
constexpr std::array<std::array<std::string_view, 7>, 4> currencies = {{
    {"$", "USD"},
    {"€", "EUR"},
    {"£", "GBP"},
    {"₪", "ILS", "NIS", "ש\"ח", "ש״ח", "ש''ח", "שח"},
}};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool HasDigit(std::string_view text) { return std::any_of(text.begin(), text.end(), IsDigit); }

bool IsWordLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

void TrimBlanks(std::string_view& text) {
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
}

/// Removes the sign from `magnitude`. False for two signs or a single parenthesis.
bool TakeSign(std::string_view& magnitude, bool& isNegative) {
    const bool isOpened = magnitude.front() == '(';
    const bool isClosed = magnitude.back() == ')';
    if (isOpened != isClosed) {
        return false;
    }
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

/// Accumulates digits into a value. Saturates at 63 bits and remembers the overflow.
class DigitSum {
public:
    void Add(int digit) {
        constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
        isTooLarge_ = isTooLarge_ || value_ > (most - digit) / 10;
        value_ = isTooLarge_ ? most : value_ * 10 + digit;
    }
    std::int64_t Value() const { return value_; }
    bool IsTooLarge() const { return isTooLarge_; }

private:
    std::int64_t value_ = 0;
    bool isTooLarge_ = false;
};

bool AddWholePart(std::string_view whole, char thousands, DigitSum& sum) {
    std::size_t sinceSeparator = 0;
    bool isGrouped = false;
    for (const char c : whole) {
        if (IsDigit(c)) {
            ++sinceSeparator;
            sum.Add(c - '0');
            continue;
        }
        // The first group has one to three digits, every other group three.
        const bool groupIsRight =
            isGrouped ? sinceSeparator == 3 : sinceSeparator >= 1 && sinceSeparator <= 3;
        if (thousands == 0 || c != thousands || !groupIsRight) {
            return false;
        }
        isGrouped = true;
        sinceSeparator = 0;
    }
    return !isGrouped || sinceSeparator == 3;
}

bool AddDecimals(std::string_view digits, std::size_t decimals, DigitSum& sum) {
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (!IsDigit(digits[i]) || (i >= decimals && digits[i] != '0')) {
            return false;
        }
        if (i < decimals) {
            sum.Add(digits[i] - '0');
        }
    }
    for (std::size_t i = digits.size(); i < decimals; ++i) {
        sum.Add(0);
    }
    return true;
}

ParsedAmount ParsePlain(std::string_view text, const CsvFormat& format, std::uint8_t decimals) {
    TrimBlanks(text);
    if (text.empty()) {
        return {.value = 0};
    }
    bool isNegative = false;
    if (!TakeSign(text, isNegative)) {
        return {};
    }
    const auto point = text.find(format.decimal);
    const std::string_view whole = text.substr(0, point);
    const std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
    DigitSum sum;
    if (whole.empty() && fraction.empty()) {
        return {};
    }
    if (!AddWholePart(whole, format.thousands, sum) || !AddDecimals(fraction, decimals, sum)) {
        return {};
    }
    if (sum.IsTooLarge()) {
        return {.value = std::nullopt, .isTooLarge = true};
    }
    return {.value = isNegative ? -sum.Value() : sum.Value()};
}

struct Priced {
    std::string rest; ///< the text without the currency
    std::uint8_t currency = 0;
};

/// Takes a currency away that stands before or behind all digits, as a word of its own.
std::optional<Priced> FindCurrency(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    for (std::size_t i = 0; i < currencies.size(); ++i) {
        for (const std::string_view sign : currencies[i]) {
            const auto place = sign.empty() ? std::string::npos : upper.find(sign);
            if (place == std::string::npos) {
                continue;
            }
            const std::string_view before = text.substr(0, place), behind = text.substr(place + sign.size());
            if (HasDigit(before) != HasDigit(behind)) { // "1$50" is not 150, and "$" not 0
                return Priced{fmt::format("{} {}", before, behind), static_cast<std::uint8_t>(i + 1)};
            }
        }
    }
    return std::nullopt;
}

/// The first word that is no currency: letters, with what stands between them.
std::string_view ForeignWord(std::string_view text) {
    const auto* const begin = std::find_if(text.begin(), text.end(), IsWordLetter);
    const auto* end = begin;
    for (const auto* at = begin; at != text.end() && !IsDigit(*at); ++at) {
        end = IsWordLetter(*at) ? at + 1 : end;
    }
    return {begin, end};
}

} // namespace

ParsedAmount ParseAmount(std::string_view text, const CsvFormat& format, std::uint8_t decimals) {
    const ParsedAmount amount = IsAscii(text) ? ParsePlain(text, format, decimals)
                                              : ParsePlain(WithPlainSigns(text), format, decimals);
    if (amount.value || amount.isTooLarge) {
        return amount;
    }
    const std::string plain = WithPlainSigns(text);
    if (const auto priced = FindCurrency(plain)) {
        ParsedAmount without = ParsePlain(priced->rest, format, decimals);
        without.currency = priced->currency;
        return without;
    }
    return amount;
}

std::string_view CurrencySign(std::uint8_t currency) { return currencies[currency - 1U].front(); }

std::string AmountRemedy(std::string_view text, const TableDefinition& table, std::uint8_t decimals) {
    const CsvFormat& format = table.format;
    constexpr std::uint8_t mostDecimals = 9;
    for (std::uint8_t more = decimals; more <= mostDecimals; ++more) {
        if (ParseAmount(text, format, more).value) {
            return fmt::format("; set \"decimals\": {} in the measure", more);
        }
    }
    for (const auto& [decimal, thousands] : {std::pair('.', ','), std::pair(',', '.'), std::pair(',', ' '),
                                             std::pair('.', ' '), std::pair('.', '\'')}) {
        CsvFormat other = format;
        other.decimal = decimal;
        other.thousands = thousands;
        if (ParseAmount(text, other, decimals).value) {
            return fmt::format("; set \"decimal\": \"{}\", \"thousands\": \"{}\" in the table \"{}\"",
                               decimal, thousands, table.name);
        }
    }
    const std::string plain = WithPlainSigns(text);
    const std::string_view word = ForeignWord(plain);
    if (HasDigit(text) && !word.empty()) {
        return fmt::format("; take \"{}\" away: beside an amount only a currency may stand ($, €, £, ₪, USD, "
                           "EUR, GBP, ILS, NIS, ש\"ח)",
                           word);
    }
    return {};
}

} // namespace qel::engine
