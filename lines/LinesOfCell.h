#pragma once

#include "lines/CellCalls.h"
#include "platform/sheet/Workbook.h"
#include "wizard/WizardContext.h"

#include <string>

namespace qel {

/// A cell whose lines are wanted, as its spreadsheet knows it.
struct LinesPlace {
    FormulaCell* cell; ///< null where no cell is chosen
    std::string sheet; ///< its name
    Workbook& book;
    CubePath fullPath;
};

/// The arguments, by name, that hold nothing that a value formula takes.
std::string FaultyNames(const CellCall& call, bool isHebrew);

/// Shows the lines behind a cell's value in a new sheet. Of several calls in its formula it asks for one.
/// A message box tells why there are no lines, and every failure. The context needs a thread state of its
/// own, because the spreadsheet goes on working meanwhile.
void ShowLinesOfCell(const WizardContext& context, const LinesPlace& place);

/// The same of one of its calls.
void ShowLinesOfCall(const WizardContext& context, const LinesPlace& place, const CellCall& call);

} // namespace qel
