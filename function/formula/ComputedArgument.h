#pragma once

#include "platform/value/Variant.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// The value of a reference or of a name; raises where there is none.
using CellLookup = std::function<Variant(const std::string& text)>;

/// The value of an argument that is computed of cells, as reports have them: + - * / & and parentheses, DATE,
/// EDATE, EOMONTH, YEAR, MONTH and DAY. None for any other expression. Raises what the lookup raises, and
/// AutomationError for values that do not fit.
std::optional<Variant> ComputedArgument(std::string_view text, const CellLookup& lookUp,
                                        const Locale& locale);

} // namespace qel
