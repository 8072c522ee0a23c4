#include "platform/sheet/calc/CalcCells.h"

#include "platform/office/OfficeFailure.h"
#include "platform/office/OtherInterface.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XNamedRange.hpp>
#include <com/sun/star/sheet/XSheetCellCursor.hpp>
#include <com/sun/star/sheet/XSheetCellRange.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>

namespace qel::office {

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;
namespace table = com::sun::star::table;
using com::sun::star::beans::XPropertySet;

namespace {

using Sheet = uno::Reference<sheet::XSpreadsheet>;

Sheet SheetNamed(const SheetDocument& document, const std::string& name) {
    return {document->getSheets()->getByName(ToOffice(name)), uno::UNO_QUERY_THROW};
}

uno::Sequence<table::CellRangeAddress> AddressesOf(const uno::Reference<sheet::XSheetCellRanges>& ranges) {
    return As<sheet::XSheetCellRangeContainer>(ranges)->getRangeAddresses();
}

uno::Reference<table::XCellRange> CellsOf(const Sheet& spreadsheet, const table::CellRangeAddress& at) {
    return spreadsheet->getCellRangeByPosition(at.StartColumn, at.StartRow, at.EndColumn, at.EndRow);
}

/// Whether a cell of an array formula is its first one.
bool BeginsArray(const Sheet& spreadsheet, std::uint32_t row, std::uint32_t column) {
    const auto x = static_cast<sal_Int32>(column), y = static_cast<sal_Int32>(row);
    const auto cursor = spreadsheet->createCursorByRange(
        As<sheet::XSheetCellRange>(spreadsheet->getCellRangeByPosition(x, y, x, y)));
    cursor->collapseToCurrentArray();
    const auto array = As<sheet::XCellRangeAddressable>(cursor)->getRangeAddress();
    return array.StartColumn == x && array.StartRow == y;
}

/// Calls with each element of the rows of an area.
template <class Rows, class Take>
void ForEachCell(const Rows& rows, const table::CellRangeAddress& at, const Take& take) {
    auto row = static_cast<std::uint32_t>(at.StartRow);
    for (const auto& cells : rows) {
        auto column = static_cast<std::uint32_t>(at.StartColumn);
        for (const auto& cell : cells) {
            take(row, column++, cell);
        }
        ++row;
    }
}

Variant ValueOf(const uno::Any& cell) {
    if (double number = 0; cell >>= number) {
        return number;
    }
    if (rtl::OUString text; cell >>= text) {
        return FromOffice(text);
    }
    return ErrorValue{};
}

/// Whether a name's content means the same for every cell: a constant, or a reference with "$" throughout.
bool IsFixed(const std::string& content) {
    const auto dollars = std::count(content.begin(), content.end(), '$');
    const bool isRange = content.find(':') != std::string::npos;
    return dollars == 0 ? content.starts_with('"') : dollars == (isRange ? 5 : 3);
}

} // namespace

void WalkFormulas(const SheetDocument& document, const std::string& name, const TakeFormula& take) {
    Translating([&] {
        const Sheet spreadsheet = SheetNamed(document, name);
        const auto formulas =
            As<sheet::XCellRangesQuery>(spreadsheet)->queryContentCells(sheet::CellFlags::FORMULA);
        for (const auto& at : AddressesOf(formulas)) {
            const auto rows = As<sheet::XCellRangeFormula>(CellsOf(spreadsheet, at))->getFormulaArray();
            ForEachCell(rows, at, [&](std::uint32_t row, std::uint32_t column, const rtl::OUString& formula) {
                if (formula.startsWith("=")) {
                    take(row, column, FromOffice(formula.copy(1)));
                } else if (formula.startsWith("{=") && BeginsArray(spreadsheet, row, column)) {
                    take(row, column, FromOffice(formula.copy(2, formula.getLength() - 3)));
                }
            });
        }
    });
}

void WalkValues(const SheetDocument& document, const std::string& name, const TakeValue& take) {
    Translating([&] {
        constexpr sal_Int64 mostCells = 5'000'000;
        const Sheet spreadsheet = SheetNamed(document, name);
        const auto kinds = sheet::CellFlags::VALUE | sheet::CellFlags::DATETIME | sheet::CellFlags::STRING |
                           sheet::CellFlags::FORMULA;
        sal_Int64 cells = 0;
        for (const auto& filled :
             AddressesOf(As<sheet::XCellRangesQuery>(spreadsheet)->queryContentCells(kinds))) {
            cells +=
                sal_Int64{filled.EndRow - filled.StartRow + 1} * (filled.EndColumn - filled.StartColumn + 1);
            if (cells > mostCells) {
                throw AutomationError(applicationDefinedError,
                                      "The sheet " + name + " has more than 5000000 cells with contents.",
                                      "LibreOffice");
            }
            const auto rows = As<sheet::XCellRangeData>(CellsOf(spreadsheet, filled))->getDataArray();
            ForEachCell(rows, filled, [&](std::uint32_t row, std::uint32_t column, const uno::Any& cell) {
                take(row, column, ValueOf(cell));
            });
        }
    });
}

std::shared_ptr<FormulaCell> FormulaCellAt(const SheetDocument& document, const std::string& name,
                                           std::uint32_t row, std::uint32_t column) {
    return Translating([&] {
        const auto cell =
            SheetNamed(document, name)
                ->getCellByPosition(static_cast<sal_Int32>(column), static_cast<sal_Int32>(row));
        return FormulaCellFrom(uno::Any(cell), document);
    });
}

void GoToCell(const SheetDocument& document, const std::string& name, std::uint32_t row,
              std::uint32_t column) {
    Translating([&] {
        const Sheet spreadsheet = SheetNamed(document, name);
        const auto controller = As<com::sun::star::frame::XModel>(document)->getCurrentController();
        As<sheet::XSpreadsheetView>(controller)->setActiveSheet(spreadsheet);
        As<com::sun::star::view::XSelectionSupplier>(controller)
            ->select(uno::Any(
                spreadsheet->getCellByPosition(static_cast<sal_Int32>(column), static_cast<sal_Int32>(row))));
    });
}

bool IsHidden(const SheetDocument& document, const std::string& name) {
    return Translating([&] {
        bool isVisible = true;
        As<XPropertySet>(SheetNamed(document, name))->getPropertyValue("IsVisible") >>= isVisible;
        return !isVisible;
    });
}

void WalkNames(const SheetDocument& document,
               const std::function<void(const std::string& sheet, const std::string& name,
                                        const std::string& content)>& take) {
    const auto walk = [&](const uno::Reference<XPropertySet>& owner, const std::string& sheetName) {
        uno::Reference<com::sun::star::container::XNameAccess> names;
        owner->getPropertyValue("NamedRanges") >>= names;
        for (const rtl::OUString& name : names->getElementNames()) {
            const uno::Reference<sheet::XNamedRange> range(names->getByName(name), uno::UNO_QUERY_THROW);
            if (const std::string content = FromOffice(range->getContent()); IsFixed(content)) {
                take(sheetName, FromOffice(name), content);
            }
        }
    };
    Translating([&] {
        walk(As<XPropertySet>(document), "");
        for (const rtl::OUString& name : document->getSheets()->getElementNames()) {
            walk(As<XPropertySet>(document->getSheets()->getByName(name)), FromOffice(name));
        }
    });
}

} // namespace qel::office
