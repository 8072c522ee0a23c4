#include "platform/value/ValueText.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace qel {

namespace {

constexpr int significantDigits = 15;
constexpr int moneyDecimals = 4;
constexpr int smallestPlainExponent = -9;
constexpr int largestPlainExponent = 20;

struct DecimalDigits {
    std::string digits; ///< without trailing zeros; the point comes after the first
    int exponent = 0;
};

/// Of a text like 1.25e+03.
DecimalDigits ReadScientific(std::string_view scientific) {
    const auto e = scientific.find('e');
    DecimalDigits result;
    result.digits = scientific.substr(0, e);
    if (result.digits.size() > 1) {
        result.digits.erase(1, 1);
    }
    result.exponent =
        static_cast<int>(std::strtol(std::string(scientific.substr(e + 1)).c_str(), nullptr, 10));
    result.digits.erase(result.digits.find_last_not_of('0') + 1);
    return result;
}

/// The fewest digits that read back as the same number.
DecimalDigits ShortestDigits(double number) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific).ptr;
    return ReadScientific({text.data(), static_cast<std::size_t>(end - text.data())});
}

/// Large sums need 16 or 17 digits to keep their cents; the further decimals of other numbers are a double's
/// rounding.
DecimalDigits DigitsOf(double number) {
    auto shortest = ShortestDigits(number);
    const auto decimals = static_cast<int>(shortest.digits.size()) - 1 - shortest.exponent;
    if (decimals <= moneyDecimals && shortest.exponent <= largestPlainExponent) {
        return shortest;
    }
    return ReadScientific(fmt::format("{:.{}e}", number, significantDigits - 1));
}

std::string PlainText(DecimalDigits number) {
    if (number.exponent < 0) {
        return fmt::format("0.{:0>{}}", number.digits,
                           number.digits.size() + static_cast<std::size_t>(-number.exponent - 1));
    }
    const auto wholeDigits = static_cast<std::size_t>(number.exponent) + 1;
    if (number.digits.size() <= wholeDigits) {
        return number.digits + std::string(wholeDigits - number.digits.size(), '0');
    }
    return number.digits.insert(wholeDigits, 1, '.');
}

std::string ExponentText(DecimalDigits number) {
    if (number.digits.size() > 1) {
        number.digits.insert(1, 1, '.');
    }
    return fmt::format("{}E{}{:02}", number.digits, number.exponent < 0 ? '-' : '+',
                       std::abs(number.exponent));
}

} // namespace

std::string NumberText(double number) {
    if (!std::isfinite(number)) {
        return "#NUM!";
    }
    if (number == 0) {
        return "0";
    }
    const auto digits = DigitsOf(std::abs(number));
    const bool isPlain = digits.exponent >= smallestPlainExponent && digits.exponent <= largestPlainExponent;
    return fmt::format("{}{}", number < 0 ? "-" : "", isPlain ? PlainText(digits) : ExponentText(digits));
}

std::string ValueText(const Variant& value) {
    if (value.Is<std::string>()) {
        return value.As<std::string>();
    }
    if (value.Is<double>()) {
        return NumberText(value.As<double>());
    }
    if (value.Is<std::int16_t>()) {
        return fmt::format("{}", value.As<std::int16_t>());
    }
    if (value.Is<std::int32_t>()) {
        return fmt::format("{}", value.As<std::int32_t>());
    }
    if (value.Is<bool>()) {
        return value.As<bool>() ? "TRUE" : "FALSE";
    }
    if (value.Is<Empty>() || value.Is<Null>()) {
        return "";
    }
    return fmt::format("({})", value.TypeName());
}

} // namespace qel
