#pragma once

#include "cube/ValueCall.h"
#include "function/formula/Formula.h"

#include <cstdint>
#include <variant>

namespace qel {

/// The functions of the class that a cell can call.
enum class WorksheetFunction : std::uint8_t { QeLF1, QeL1, QelFuncDemo, QelName, RetQelName };

/// A formula whose arguments have the types of the function's parameters.
struct FormulaCall {
    WorksheetFunction function = WorksheetFunction::QeLF1;
    std::variant<ValueCall, NameCall> arguments;
    std::size_t given = 0; ///< how many arguments the formula has
};

/// Finds the function and converts the arguments as automation does: numbers and booleans to texts, texts (in
/// the locale's order) and numbers to dates. Raises FormulaError naming the function or the argument.
FormulaCall BindFormula(const Formula& formula, const Locale& locale);

} // namespace qel
