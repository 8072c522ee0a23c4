#pragma once

#include "cli/formula/Formula.h"

#include <cstdint>
#include <string>
#include <variant>

namespace qel {

/// The functions of the class that a cell can call.
enum class WorksheetFunction : std::uint8_t { QeLF1, QeL1, QelFuncDemo, QelName, RetQelName };

/// The arguments of the value functions, named as in the class's interface. A list that was omitted is the
/// spreadsheet's missing value, a text that was omitted is empty, a date the zero date.
struct ValueCall {
    std::string cubeFile, CubeName;
    Variant ObsName, ObsNum, ObsLevel, ObsMember, ActivityList;
    std::string Summary_Group, Seif_level, Accounts, Measure, MoneySet, Plbs, RH, Firma, Opening_Balance;
    AutomationDate From_Date, To_Date;
};

/// The arguments of the name functions.
struct NameCall {
    std::string cubeFile, CubeName, DimType, DimMember;
};

/// A formula whose arguments have the types of the function's parameters.
struct FormulaCall {
    WorksheetFunction function = WorksheetFunction::QeLF1;
    std::variant<ValueCall, NameCall> arguments;
};

/// Finds the function and converts the arguments as automation does: numbers and booleans to texts, texts (in
/// the locale's order) and numbers to dates. Raises FormulaError naming the function or the argument.
FormulaCall BindFormula(const Formula& formula, const Locale& locale);

} // namespace qel
