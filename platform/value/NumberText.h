#pragma once

#include "platform/value/Variant.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// The platform's text for a number of that many significant digits: 15 for a double, 7 for a single.
std::string NumberToText(double number, int digits, const Locale& locale);
/// Without trailing zeros after the decimal separator.
std::string CurrencyToText(Currency amount, const Locale& locale);
std::string DecimalToText(const Decimal& decimal, const Locale& locale);

/// The number that the text stands for, infinite when it is too large for a double, none for any other text:
/// blanks around, a sign on either side or parentheses, thousands separators, an exponent (E or D), &H and
/// &O.
std::optional<double> ReadNumber(std::string_view text, const Locale& locale);

} // namespace qel
