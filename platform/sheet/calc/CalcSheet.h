#pragma once

#include "platform/sheet/Spreadsheet.h"

#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/table/XCell.hpp>

namespace qel::office {

using SheetDocument = com::sun::star::uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>;

/// The first cell of the selection in the document's window. Raises 91 when the document shows no sheet.
std::shared_ptr<SheetRange> ActiveCellOf(const SheetDocument& document);

/// The same cell, to edit its formula.
std::shared_ptr<FormulaCell> ActiveFormulaCellOf(const SheetDocument& document);

/// The same; null where something else is chosen, such as a drawing.
std::shared_ptr<FormulaCell> ChosenFormulaCellOf(const SheetDocument& document);

/// Whether the cell stands in the right half of what the document's window shows.
bool StandsRight(const SheetDocument& document, const SheetRange& cell);

/// The cell, or the first cell of the range, that a macro passed; null for any other object. Its document is
/// the one whose window shows it.
std::shared_ptr<SheetRange> CellFrom(const com::sun::star::uno::Any& object, const SheetDocument& document);

/// The same, to edit its formula.
std::shared_ptr<FormulaCell> FormulaCellFrom(const com::sun::star::uno::Any& object,
                                             const SheetDocument& document);

} // namespace qel::office
