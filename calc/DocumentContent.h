#pragma once

#include "platform/sheet/calc/CalcSheet.h"
#include "workbook/cells/WorkbookContent.h"

namespace qel::calc {

/// The formulas that may call functions of ours, in one sheet or in all for an empty name, and the values of
/// every sheet that they may refer to. Raises AutomationError.
WorkbookContent ContentOf(const office::SheetDocument& document, const std::string& sheet);

} // namespace qel::calc
