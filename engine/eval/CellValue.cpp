#include "engine/eval/CellArithmetic.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace qel::engine {

namespace {

constexpr std::array<std::int64_t, 19> powersOfTen = [] {
    std::array<std::int64_t, 19> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}();

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

bool AddFits(std::int64_t a, std::int64_t b) { return b >= 0 ? a <= largest - b : a >= smallest - b; }

bool MultiplyFits(std::int64_t a, std::int64_t b) {
    if (a == 0 || b == 0) {
        return true;
    }
    if (a == smallest || b == smallest) {
        return a == 1 || b == 1;
    }
    return std::abs(a) <= largest / std::abs(b);
}

/// Scales both operands to the same number of decimals; false when one does not fit.
bool Align(const CellValue& a, const CellValue& b, std::int64_t& left, std::int64_t& right) {
    const std::uint8_t decimals = std::max(a.decimals, b.decimals);
    const std::int64_t leftFactor = powersOfTen[decimals - a.decimals];
    const std::int64_t rightFactor = powersOfTen[decimals - b.decimals];
    if (!MultiplyFits(a.scaled, leftFactor) || !MultiplyFits(b.scaled, rightFactor)) {
        return false;
    }
    left = a.scaled * leftFactor;
    right = b.scaled * rightFactor;
    return true;
}

/// The double nearest to scaled / 10^decimals.
double NearestDouble(std::int64_t scaled, std::uint8_t decimals) {
    constexpr std::int64_t exactInDouble = std::int64_t{1} << 53;
    if (std::abs(scaled / 2) < exactInDouble / 2) {
        // Both operands are exact, so the division rounds once.
        return static_cast<double>(scaled) / static_cast<double>(powersOfTen[decimals]);
    }
    const std::string digits = fmt::format("{}e-{}", scaled, decimals);
    double number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

} // namespace

CellValue CellValue::Exact(std::int64_t scaled, std::uint8_t decimals) {
    CellValue value;
    value.isEmpty = false;
    value.isExact = true;
    value.scaled = scaled;
    value.decimals = decimals;
    value.number = NearestDouble(scaled, decimals);
    return value;
}

CellValue CellValue::Inexact(double number) {
    CellValue value;
    value.isEmpty = false;
    value.number = number;
    return value;
}

CellValue CellValue::Text(const std::string& text) {
    CellValue value;
    value.isEmpty = false;
    value.text = &text;
    return value;
}

CellValue CellValue::Condition(bool condition) {
    CellValue value;
    value.isEmpty = false;
    value.isCondition = true;
    value.number = condition ? 1 : 0;
    return value;
}

CellValue Add(const CellValue& a, const CellValue& b) {
    if (a.isEmpty) {
        return b;
    }
    if (b.isEmpty) {
        return a;
    }
    std::int64_t left = 0;
    std::int64_t right = 0;
    if (a.isExact && b.isExact && Align(a, b, left, right) && AddFits(left, right)) {
        return CellValue::Exact(left + right, std::max(a.decimals, b.decimals));
    }
    return CellValue::Inexact(a.number + b.number);
}

CellValue Negate(const CellValue& a) {
    if (a.isEmpty) {
        return a;
    }
    if (a.isExact && a.scaled != smallest) {
        return CellValue::Exact(-a.scaled, a.decimals);
    }
    return CellValue::Inexact(-a.number);
}

CellValue Multiply(const CellValue& a, const CellValue& b) {
    if (a.isEmpty || b.isEmpty) {
        return CellValue::Empty();
    }
    const auto decimals = static_cast<std::uint8_t>(a.decimals + b.decimals);
    if (a.isExact && b.isExact && decimals <= maxDecimals && MultiplyFits(a.scaled, b.scaled)) {
        return CellValue::Exact(a.scaled * b.scaled, decimals);
    }
    return CellValue::Inexact(a.number * b.number);
}

CellValue Divide(const CellValue& a, const CellValue& b) {
    if (a.isEmpty) {
        return CellValue::Empty();
    }
    return CellValue::Inexact(a.number / (b.isEmpty ? 0.0 : b.number));
}

int Compare(const CellValue& a, const CellValue& b) {
    std::int64_t left = 0;
    std::int64_t right = 0;
    const bool exact = (a.isExact || a.isEmpty) && (b.isExact || b.isEmpty);
    if (exact && Align(a, b, left, right)) {
        return left < right ? -1 : static_cast<int>(left > right);
    }
    if (std::isnan(a.number) ||
        std::isnan(b.number)) { // NaN sorts before every number, to keep a strict order
        return static_cast<int>(std::isnan(b.number)) - static_cast<int>(std::isnan(a.number));
    }
    return a.number < b.number ? -1 : static_cast<int>(a.number > b.number);
}

CellValue NumberFromText(std::string_view digits) {
    std::string whole(digits);
    const std::size_t point = whole.find('.');
    const std::size_t decimals = point == std::string::npos ? 0 : whole.size() - point - 1;
    if (point != std::string::npos) {
        whole.erase(point, 1);
    }
    std::int64_t scaled = 0;
    const auto [end, error] = std::from_chars(whole.data(), whole.data() + whole.size(), scaled);
    if (error == std::errc() && end == whole.data() + whole.size() && decimals <= maxDecimals) {
        return CellValue::Exact(scaled, static_cast<std::uint8_t>(decimals));
    }
    double number = 0;
    const auto [numberEnd, numberError] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (numberError != std::errc()) {
        number = digits.find("e-") == std::string_view::npos ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return CellValue::Inexact(number);
}

} // namespace qel::engine
