#pragma once

#include "wizard/FormulaArgs.h"

#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// The arguments as they stand between the parentheses of a value formula: texts in double quotes followed by
/// ", ", arrays in braces followed by "},". Nothing is escaped; of an array of one text the double quotes
/// become no-break spaces, in `arguments` too. Raises as ToText.
std::string ComposeArgumentText(FormulaArgs& arguments, const Locale& locale);

/// One of them alone, with `separator` between the elements of an array.
std::string ComposeArgument(Variant& argument, const Locale& locale, std::string_view separator);

/// The same of a name formula, whose arguments are four texts.
std::string ComposeNameArgumentText(const std::vector<std::string>& arguments);

} // namespace qel
