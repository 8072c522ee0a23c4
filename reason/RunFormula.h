#pragma once

#include "function/OrmQelFunction.h"
#include "function/formula/BindFormula.h"

namespace qel {

/// Raises AutomationError when the call fails, which a cell shows as #VALUE!.
FormulaResult RunFormula(OrmQelFunction& object, const FormulaCall& call);

/// Whether the result is a worksheet's 0, which may stand for an error.
bool ShowsZero(const FormulaResult& result, const Locale& locale);

/// Whether a value formula's result says that the cube is of an outdated layout.
bool IsOutdated(const FormulaResult& result);

/// One of the five lists as the function uses it. QelFuncDemo takes arrays as they are. Raises
/// AutomationError.
KeyList KeysOf(WorksheetFunction function, const Variant& list, const Locale& locale);

} // namespace qel
