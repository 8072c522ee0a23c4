#pragma once

#include "function/formula/BindFormula.h"
#include "workbook/cells/WorkbookContent.h"

#include <optional>
#include <string>
#include <vector>

namespace qel {

/// A call of a function of ours in a cell of a workbook.
struct SheetCall {
    std::size_t sheet = 0;
    CellPlace place;
    std::optional<FormulaCall> call; ///< none where an argument cannot be read or does not fit
    std::string fault;               ///< why there is none
    bool isUnread = false;           ///< the file has no value of an argument
};

/// All calls of the workbook, sheet by sheet; their arguments have the values that the file keeps.
std::vector<SheetCall> FindSheetCalls(const WorkbookContent& workbook, const Locale& locale);

} // namespace qel
