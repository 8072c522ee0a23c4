#pragma once

#include "platform/value/Variant.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// One argument as the spreadsheet sends it: a text is a String, a number or a date a Double, TRUE and FALSE
/// are Booleans, an array constant is a one-dimensional zero-based array of variants.
struct FormulaArgument {
    std::optional<Variant> value; ///< none for an omitted argument
    std::size_t position = 0;     ///< where it stands in the formula, in characters from 1
};

/// A cell's text that calls one function.
struct Formula {
    std::string function; ///< as it was written, without the class's name before it
    std::size_t position = 0;
    std::vector<FormulaArgument> arguments;
};

} // namespace qel
