#pragma once

#include "workbook/cells/WorkbookContent.h"

#include <cstdint>

namespace qel {

/// Puts what a file has into its sheets, as far as a workbook of a person goes: a small file can name a
/// million cells by one number, or one long text in each of a million. What goes beyond raises WorkbookError.
class ContentLimits {
public:
    SheetContent& AddSheet(WorkbookContent& workbook, std::string name);
    void Keep(SheetContent& sheet, CellPlace place, Variant value);
    void Keep(SheetContent& sheet, SheetFormula formula);
    /// What stands in one cell of the file is kept `times` times; it is a formula of ours or a value.
    void Repeat(const SheetContent& sheet, std::uint64_t times, bool isFormula);

private:
    void TakeText(const SheetContent& sheet, std::size_t bytes);

    std::size_t cells_ = 0, textBytes_ = 0;
    std::uint64_t repeatedCells_ = 0, repeatedFormulas_ = 0;
};

} // namespace qel
