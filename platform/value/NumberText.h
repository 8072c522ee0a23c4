#pragma once

#include "platform/value/Variant.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// The platform's text for a number with that many significant digits: 15 for a double, 7 for a single.
std::string NumberToText(double number, int digits, const Locale& locale);
/// Without trailing zeros after the decimal separator.
std::string CurrencyToText(Currency amount, const Locale& locale);
std::string DecimalToText(const Decimal& decimal, const Locale& locale);

/// The value of a numeric text: surrounding blanks, a sign on either side or parentheses, thousands
/// separators, an exponent (E or D), &H and &O. Infinite when it is too large for a double; nullopt for any
/// other text.
[[nodiscard]] std::optional<double> ReadNumber(std::string_view text, const Locale& locale);

} // namespace qel
