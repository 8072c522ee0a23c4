#pragma once

#include "cube/CellLines.h"
#include "cube/ValueCall.h"
#include "platform/sheet/Workbook.h"

#include <string>
#include <vector>

namespace qel {

/// The lines behind a cell's value, with what stands above them.
struct LinesBehind {
    std::string cell; ///< "Report.C5"
    ValueCall call;
    double value = 0;
    ModSetCube::CellLines lines = {};
};

/// The words of the sheet, in the person's language.
struct LineSheetTexts {
    std::vector<std::string> arguments; ///< the names of all of them
    std::string title, value, lines, of, more, totalOfSome, otherTotal, total;
    bool isRightToLeft = false;
};

/// The sheet that shows lines: its title; the arguments below their names; how many lines there are; the live
/// totals; the lines. Texts that are days or months become dates where a whole column has them.
TableSheet ComposeLineSheet(std::string name, LinesBehind behind, const LineSheetTexts& texts);

} // namespace qel
