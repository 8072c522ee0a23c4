#pragma once

#include "platform/sheet/calc/CalcSheet.h"
#include "platform/value/Variant.h"

#include <cstdint>
#include <functional>
#include <string>

namespace qel::office {

/// Takes the cells of a sheet one by one; rows and columns are counted from 0.
using TakeFormula = std::function<void(std::uint32_t row, std::uint32_t column, const std::string& formula)>;
using TakeValue = std::function<void(std::uint32_t row, std::uint32_t column, Variant value)>;

/// The formulas of a sheet without the equals sign; an array formula stands in its first cell.
void WalkFormulas(const SheetDocument& document, const std::string& sheet, const TakeFormula& take);

/// The values of the cells that are not empty: numbers, texts, and an ErrorValue for an error. Raises for
/// too many cells.
void WalkValues(const SheetDocument& document, const std::string& sheet, const TakeValue& take);

/// A cell of a sheet, counted from 0, to edit its formula.
std::shared_ptr<FormulaCell> FormulaCellAt(const SheetDocument& document, const std::string& sheet,
                                           std::uint32_t row, std::uint32_t column);

/// Shows the cell and chooses it, unless its sheet is hidden.
void GoToCell(const SheetDocument& document, const std::string& sheet, std::uint32_t row,
              std::uint32_t column);

/// Whether a sheet of the document is not shown.
bool IsHidden(const SheetDocument& document, const std::string& sheet);

/// Calls with each name of the document, or of a sheet, whose content does not depend on the cell that uses
/// it.
void WalkNames(const SheetDocument& document,
               const std::function<void(const std::string& sheet, const std::string& name,
                                        const std::string& content)>& take);

} // namespace qel::office
