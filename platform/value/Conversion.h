#pragma once

#include "platform/value/Variant.h"

#include <string>
#include <string_view>

namespace qel {

/// The platform's conversion to text: numbers in their shortest form with the locale's decimal separator,
/// dates in the locale's short form, "True"/"False", Empty as "". Raises 94 for Null, 13 for errors, arrays
/// and objects.
std::string ToText(const Variant& value, const Locale& locale);

/// Raises 13 for a text that is not a number, 94 for Null, 6 on overflow.
double ToDouble(const Variant& value, const Locale& locale);

/// A date, a number of days since the locale's null date, or a text in the locale's form; Empty and 0 are the
/// zero date. Raises as ToDouble and ParseDate.
AutomationDate ToDate(const Variant& value, const Locale& locale);

/// The platform's IsNumeric: true for numbers, booleans, Empty and numeric texts (sign on either side,
/// thousands separators, exponent, parentheses, &H and &O); false for dates, errors, arrays and objects.
[[nodiscard]] bool IsNumeric(const Variant& value, const Locale& locale);
[[nodiscard]] bool IsNumericText(std::string_view text, const Locale& locale);

} // namespace qel
