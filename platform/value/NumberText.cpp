#include "platform/value/NumberText.h"

#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace qel {

namespace {

bool IsWhite(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view WithoutWhite(std::string_view text) {
    while (!text.empty() && IsWhite(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsWhite(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Inserts the decimal separator before the last `scale` digits and drops trailing zeros.
std::string PlaceSeparator(std::string digits, std::size_t scale, bool negative, char separator) {
    if (digits.size() <= scale) {
        digits.insert(0, scale + 1 - digits.size(), '0');
    }
    if (scale > 0) {
        digits.insert(digits.size() - scale, 1, separator);
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == separator) {
            digits.pop_back();
        }
    }
    return negative && digits != "0" ? "-" + digits : digits;
}

/// The digits of a 96-bit integer, most significant first.
std::string IntegerDigits(const Decimal& decimal) {
    std::array<std::uint64_t, 3> limbs = {decimal.high, decimal.low >> 32U, decimal.low & 0xFFFFFFFFU};
    std::string digits;
    while (limbs != std::array<std::uint64_t, 3>{} || digits.empty()) {
        std::uint64_t remainder = 0;
        for (std::uint64_t& limb : limbs) {
            const std::uint64_t dividend = remainder << 32U | limb;
            limb = dividend / 10;
            remainder = dividend % 10;
        }
        digits += static_cast<char>('0' + remainder);
    }
    return {digits.rbegin(), digits.rend()};
}

/// "&H1F", "&O17", of at most 32 bits.
std::optional<double> ReadBased(std::string_view text) {
    if (text.size() < 3 || text[0] != '&') {
        return std::nullopt;
    }
    const char letter = text[1];
    const int base = letter == 'H' || letter == 'h' ? 16 : letter == 'O' || letter == 'o' ? 8 : 0;
    if (base == 0) {
        return std::nullopt;
    }
    std::uint32_t bits = 0;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), bits, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(bits);
}

/// Strips the sign or parentheses from a trimmed text. Returns whether it is negative; nullopt for more than
/// one of them.
std::optional<bool> TakeSign(std::string_view& text) {
    if (text.size() >= 2 && text.front() == '(' && text.back() == ')') {
        text = WithoutWhite(text.substr(1, text.size() - 2));
        return true;
    }
    const auto isSign = [](char c) { return c == '+' || c == '-'; };
    if (!text.empty() && isSign(text.front())) {
        const bool negative = text.front() == '-';
        text = WithoutWhite(text.substr(1));
        return negative;
    }
    if (!text.empty() && isSign(text.back())) {
        const bool negative = text.back() == '-';
        text = WithoutWhite(text.substr(0, text.size() - 1));
        return negative;
    }
    return false;
}

/// Rewrites digits with thousands separators, decimal part and exponent as a plain C number; empty for any
/// other text.
std::string PlainNumber(std::string_view text, const Locale& locale) {
    std::string plain;
    bool anyDigit = false;
    std::size_t i = 0;
    for (; i < text.size() && (IsDigit(text[i]) || (anyDigit && text[i] == locale.thousandsSeparator)); ++i) {
        if (!IsDigit(text[i])) {
            continue;
        }
        anyDigit = true;
        plain += text[i];
    }
    if (i < text.size() && text[i] == locale.decimalSeparator) {
        plain += '.';
        for (++i; i < text.size() && IsDigit(text[i]); ++i) {
            anyDigit = true;
            plain += text[i];
        }
    }
    if (!anyDigit) {
        return {};
    }
    if (i < text.size() && std::string_view("EeDd").find(text[i]) != std::string_view::npos) {
        plain += 'e';
        if (++i < text.size() && (text[i] == '+' || text[i] == '-')) {
            plain += text[i++];
        }
        if (i == text.size() || !IsDigit(text[i])) {
            return {};
        }
        for (; i < text.size() && IsDigit(text[i]); ++i) {
            plain += text[i];
        }
    }
    return i == text.size() ? plain : std::string();
}

/// Whether a number that std::from_chars finds out of range is too large rather than too small: its exponent
/// decides, or without one the digits before the decimal point.
double OutOfRange(const std::string& plain) {
    const std::size_t exponent = plain.find('e');
    const bool tooSmall = exponent != std::string::npos ? plain[exponent + 1] == '-'
                                                        : plain[plain.find_first_not_of('0')] == '.';
    return tooSmall ? 0 : std::numeric_limits<double>::infinity();
}

} // namespace

std::string NumberToText(double number, int digits, const Locale& locale) {
    if (number == 0) {
        return "0"; // of either sign
    }
    std::string text = fmt::format("{:.{}G}", number, digits);
    std::replace(text.begin(), text.end(), '.', locale.decimalSeparator);
    return text;
}

std::string CurrencyToText(Currency amount, const Locale& locale) {
    const bool negative = amount.scaled < 0;
    const auto bits = static_cast<std::uint64_t>(amount.scaled);
    const std::uint64_t magnitude = negative ? 0 - bits : bits;
    return PlaceSeparator(std::to_string(magnitude), 4, negative, locale.decimalSeparator);
}

std::string DecimalToText(const Decimal& decimal, const Locale& locale) {
    return PlaceSeparator(IntegerDigits(decimal), decimal.scale, decimal.negative, locale.decimalSeparator);
}

std::optional<double> ReadNumber(std::string_view text, const Locale& locale) {
    std::string_view rest = WithoutWhite(text);
    if (const auto based = ReadBased(rest)) {
        return based;
    }
    const std::optional<bool> negative = TakeSign(rest);
    const std::string plain = PlainNumber(rest, locale);
    if (!negative || plain.empty()) {
        return std::nullopt;
    }
    double magnitude = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), magnitude);
    if (error == std::errc::result_out_of_range) {
        magnitude = OutOfRange(plain);
    } else if (error != std::errc()) {
        return std::nullopt;
    }
    return *negative ? -magnitude : magnitude;
}

} // namespace qel
