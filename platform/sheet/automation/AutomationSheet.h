#pragma once

#include "platform/sheet/Spreadsheet.h"
#include "platform/windows/ComPointer.h"

namespace qel::windows {

/// The cell that a macro passed, accessed through its object model. Raises 91 for a null pointer.
std::shared_ptr<SheetRange> SheetRangeOf(IDispatch* cell);

/// The same, to edit its formula.
std::shared_ptr<FormulaCell> FormulaCellOf(IDispatch* cell);

/// The same, to read its formula, which may be protected.
std::shared_ptr<FormulaCell> ReadFormulaCellOf(IDispatch* cell);

} // namespace qel::windows
