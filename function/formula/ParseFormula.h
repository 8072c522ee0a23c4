#pragma once

#include "function/formula/Formula.h"

#include <string_view>

namespace qel {

/// What DATE means in a document.
struct FormulaDates {
    double nullDate = 0;              ///< its numbers count days since then
    bool takesYearsBefore1900 = true; ///< and adds 1900 to them, as Excel does; otherwise they are refused
};

/// Reads the text of a cell, e.g. `=OrmFunctionQel4.OrmQelFunction.QelName("a.cub", "Fin", "SuperSum1", 42)`.
/// The leading '=' and the class's name may be missing, names stand in any letter case, arguments are
/// separated by ',' or throughout by ';', the elements of an array constant by ',', ';' or '\'.
/// Raises FormulaError naming what is wrong and where.
Formula ParseFormula(std::string_view text, const FormulaDates& dates = {});

} // namespace qel
