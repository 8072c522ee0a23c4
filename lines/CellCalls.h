#pragma once

#include "cube/ValueCall.h"
#include "function/formula/BindFormula.h"
#include "platform/sheet/Spreadsheet.h"

#include <functional>
#include <string>
#include <vector>

namespace qel {

/// How a sheet's formulas mean the path of a cube file.
using CubePath = std::function<std::string(const std::string& cubeFile)>;

/// A value formula of a cell, with the values that its arguments have now.
struct CellCall {
    ValueCall call;
    std::vector<std::size_t> faulty; ///< arguments without a value that the function takes; the one after the
                                     ///< last for too many of them
    std::size_t given = 0;           ///< how many arguments the formula has
};

struct CellCalls {
    std::vector<CellCall> values;
    std::vector<NameCall> names; ///< calls that give names
};

/// The calls in a cell's formula, in their order. Raises what the cell raises.
CellCalls CallsOf(const FormulaCell& cell, const CubePath& fullPath, const Locale& locale);

/// What tells a call from the others of its formula: its arguments that restrict something.
std::string CallText(std::size_t number, const ValueCall& call);

/// An argument as a person reads it: the first key of a list, a day as 2024-12-31.
std::string ArgumentText(const ValueCall& call, std::size_t argument);

} // namespace qel
