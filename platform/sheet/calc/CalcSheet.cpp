#include "platform/sheet/calc/CalcSheet.h"

#include "platform/office/OfficeFailure.h"
#include "platform/office/OtherInterface.h"
#include "platform/value/Conversion.h"

#include <fmt/format.h>

#include <algorithm>
#include <com/sun/star/awt/Point.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/AddressConvention.hpp>
#include <com/sun/star/sheet/ComplexReference.hpp>
#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/FormulaToken.hpp>
#include <com/sun/star/sheet/ReferenceFlags.hpp>
#include <com/sun/star/sheet/SingleReference.hpp>
#include <com/sun/star/sheet/XArrayFormulaRange.hpp>
#include <com/sun/star/sheet/XCellAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XFormulaParser.hpp>
#include <com/sun/star/sheet/XFormulaTokens.hpp>
#include <com/sun/star/sheet/XSheetCellRange.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <com/sun/star/sheet/XViewPane.hpp>
#include <com/sun/star/table/CellContentType.hpp>
#include <com/sun/star/text/WritingMode2.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/CellProtection.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <com/sun/star/util/XNumberFormatTypes.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>
#include <com/sun/star/util/XProtectable.hpp>
#include <cstdlib>
#include <tuple>

namespace qel::office {

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;
namespace table = com::sun::star::table;
namespace util = com::sun::star::util;
using com::sun::star::beans::XPropertySet;

namespace {

using RangeReference = uno::Reference<sheet::XSheetCellRange>;

table::CellRangeAddress AddressOf(const RangeReference& range) {
    return As<sheet::XCellRangeAddressable>(range)->getRangeAddress();
}

RangeReference RangeOf(const RangeReference& spreadsheet, sal_Int32 left, sal_Int32 top, sal_Int32 right,
                       sal_Int32 bottom) {
    return As<sheet::XSheetCellRange>(spreadsheet->getCellRangeByPosition(left, top, right, bottom));
}

/// While one lives, changes of the document are not shown, and do not count as changes.
class PassingChange {
public:
    explicit PassingChange(const SheetDocument& document)
        : model_(document, uno::UNO_QUERY_THROW), modifiable_(document, uno::UNO_QUERY_THROW),
          wasModified_(modifiable_->isModified()) {
        model_->lockControllers();
    }
    ~PassingChange() {
        try {
            model_->unlockControllers(); // which tells the document that it was changed
            modifiable_->setModified(wasModified_);
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the document was closed
        }
    }
    PassingChange(const PassingChange&) = delete;
    PassingChange& operator=(const PassingChange&) = delete;

private:
    uno::Reference<com::sun::star::frame::XModel> model_;
    uno::Reference<util::XModifiable> modifiable_;
    bool wasModified_;
};

/// While one lives, a change cannot be undone. The office locks out one change alone: it records those that
/// follow.
class Unrecorded {
public:
    explicit Unrecorded(const SheetDocument& document)
        : undo_(As<com::sun::star::document::XUndoManagerSupplier>(document)->getUndoManager()) {
        undo_->lock();
    }
    ~Unrecorded() {
        try {
            undo_->unlock();
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the document was closed
        }
    }
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;

private:
    uno::Reference<com::sun::star::document::XUndoManager> undo_;
};

/// While one lives, a cell has another formula. It is an array formula, so that a range is not taken for the
/// cell beside the formula. A cell without a number format takes that of its formula: it is put back.
class OtherFormula {
public:
    OtherFormula(const SheetDocument& document, const RangeReference& range, const rtl::OUString& formula)
        : document_(document), cell_(range->getCellByPosition(0, 0)), own_(cell_->getFormula()),
          array_(As<sheet::XArrayFormulaRange>(range)) {
        As<XPropertySet>(cell_)->getPropertyValue(NumberFormat()) >>= format_;
        SetArrayFormula(formula);
    }
    ~OtherFormula() {
        try {
            SetArrayFormula({});
            {
                const Unrecorded change(document_);
                cell_->setFormula(own_);
            }
            RestoreFormat();
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): it has no undo manager any more
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the document was closed
        }
    }
    OtherFormula(const OtherFormula&) = delete;
    OtherFormula& operator=(const OtherFormula&) = delete;

private:
    static rtl::OUString NumberFormat() { return "NumberFormat"; }

    void RestoreFormat() const {
        const auto properties = As<XPropertySet>(cell_);
        sal_Int32 format = 0;
        properties->getPropertyValue(NumberFormat()) >>= format;
        if (format != format_) {
            const Unrecorded change(document_);
            properties->setPropertyValue(NumberFormat(), uno::Any(format_));
        }
    }

    void SetArrayFormula(const rtl::OUString& formula) const {
        const Unrecorded change(document_);
        array_->setArrayFormula(formula);
    }

    const SheetDocument& document_;
    uno::Reference<table::XCell> cell_;
    rtl::OUString own_;
    sal_Int32 format_ = 0;
    uno::Reference<sheet::XArrayFormulaRange> array_;
};

class CalcRange;

/// The document in the role of the object model's application.
class CalcApplication : public SheetApplication {
public:
    explicit CalcApplication(const SheetDocument& document) : document_(document) {}

    std::shared_ptr<SheetRange> ActiveCell() const override { return ActiveCellOf(document_); }
    std::shared_ptr<SheetRange> Cells(std::int32_t row, std::int32_t column) const override;
    std::shared_ptr<SheetRange> Range(const SheetRange& first, const SheetRange& last) const override;

private:
    SheetDocument document_;
};

class CalcRange : public FormulaCell {
public:
    CalcRange(const SheetDocument& document, const RangeReference& range)
        : document_(document), range_(range) {}

    std::shared_ptr<SheetApplication> Application() const override {
        return std::make_shared<CalcApplication>(document_);
    }

    std::int32_t Row() const override {
        return Translating([&] { return AddressOf(range_).StartRow + 1; });
    }

    std::int32_t Column() const override {
        return Translating([&] { return AddressOf(range_).StartColumn + 1; });
    }

    std::shared_ptr<SheetRange> Offset(std::int32_t rows, std::int32_t columns) const override {
        return Translating([&] {
            const auto at = AddressOf(range_);
            const RangeReference whole(range_->getSpreadsheet(), uno::UNO_QUERY);
            return std::make_shared<CalcRange>(document_,
                                               RangeOf(whole, at.StartColumn + columns, at.StartRow + rows,
                                                       at.EndColumn + columns, at.EndRow + rows));
        });
    }

    Variant Value() const override {
        return Translating([&]() -> Variant {
            const auto cell = range_->getCellByPosition(0, 0);
            if (cell->getType() == table::CellContentType_EMPTY) {
                return Empty();
            }
            if (cell->getType() == table::CellContentType_VALUE) {
                return cell->getValue();
            }
            return FromOffice(As<com::sun::star::text::XTextRange>(cell)->getString());
        });
    }

    void SetNumberFormat(const std::string& format) override {
        Translating([&] {
            const auto formats = As<util::XNumberFormatsSupplier>(document_)->getNumberFormats();
            const com::sun::star::lang::Locale language;
            sal_Int32 key = formats->queryKey(ToOffice(format), language, false);
            if (key < 0) {
                key = formats->addNew(ToOffice(format), language);
            }
            As<XPropertySet>(range_)->setPropertyValue("NumberFormat", uno::Any(key));
        });
    }

    void SetFormula(const Variant& formula) override {
        Translating([&] {
            if (formula.IsArray()) {
                SetBlock(*formula.As<std::shared_ptr<const VariantArray>>());
            } else {
                SetCell(range_->getCellByPosition(0, 0), formula);
            }
        });
    }

    std::string Formula() const override {
        return Translating([&] {
            RequireUnprotected();
            const auto formula = FromOffice(Cell()->getFormula());
            const bool isOwn =
                Cell()->getType() == table::CellContentType_FORMULA && formula.starts_with('=');
            return isOwn ? formula : std::string(); // a part of an array formula begins with "{"
        });
    }

    Variant Evaluate(const std::string& expression) const override {
        return Translating([&] {
            if (const RangeReference cells = ReferredCells(expression); cells.is()) {
                return ValuesOf(cells);
            }
            const PassingChange passing(document_);
            const Variant rows = ValueOf("ROWS(" + expression + ")");
            const Variant columns = ValueOf("COLUMNS(" + expression + ")");
            const bool isRange =
                rows.Is<double>() && columns.Is<double>() && rows.As<double>() * columns.As<double>() > 1;
            return isRange ? CellsOf(expression, rows.As<double>(), columns.As<double>())
                           : ValueOf(expression);
        });
    }

    bool TakesTextsAsKeys() const override { return true; }

    void ReplaceFormula(const std::string& formula) override {
        Translating([&] { Cell()->setFormula(ToOffice(formula)); });
    }

private:
    uno::Reference<table::XCell> Cell() const { return range_->getCellByPosition(0, 0); }

    void RequireUnprotected() const {
        const uno::Reference<util::XProtectable> spreadsheet(range_->getSpreadsheet(), uno::UNO_QUERY_THROW);
        util::CellProtection protection;
        As<XPropertySet>(range_)->getPropertyValue("CellProtection") >>= protection;
        if (spreadsheet->isProtected() && protection.IsLocked) {
            throw AutomationError(applicationDefinedError, "The cell is protected.", "LibreOffice");
        }
    }

    /// The cells that an expression names by their places; none for any other expression.
    RangeReference ReferredCells(const std::string& expression) const {
        const auto parser = Parser(sheet::AddressConvention::OOO);
        const auto place = As<sheet::XCellAddressable>(Cell())->getCellAddress();
        const auto tokens = parser->parseFormula(ToOffice(expression), place);
        sheet::ComplexReference range;
        if (tokens.getLength() != 1 ||
            !((tokens[0].Data >>= range) ||
              ((tokens[0].Data >>= range.Reference1) && (tokens[0].Data >>= range.Reference2)))) {
            return {};
        }
        const auto [left, top, spreadsheet] = PlaceOf(range.Reference1, place);
        const auto [right, bottom, last] = PlaceOf(range.Reference2, place);
        const uno::Reference<com::sun::star::container::XIndexAccess> sheets(document_->getSheets(),
                                                                             uno::UNO_QUERY_THROW);
        if (spreadsheet != last || spreadsheet < 0 || spreadsheet >= sheets->getCount()) {
            return {};
        }
        const RangeReference whole(sheets->getByIndex(spreadsheet), uno::UNO_QUERY_THROW);
        return RangeOf(whole, left, top, right, bottom);
    }

    static std::tuple<sal_Int32, sal_Int32, sal_Int32> PlaceOf(const sheet::SingleReference& cell,
                                                               const table::CellAddress& from) {
        using namespace sheet::ReferenceFlags;
        const auto flag = [&](sal_Int32 one) { return (cell.Flags & one) != 0; };
        constexpr sal_Int32 deleted = COLUMN_DELETED | ROW_DELETED | SHEET_DELETED;
        return {flag(COLUMN_RELATIVE) ? from.Column + cell.RelativeColumn : cell.Column,
                flag(ROW_RELATIVE) ? from.Row + cell.RelativeRow : cell.Row,
                flag(deleted)          ? -1
                : flag(SHEET_RELATIVE) ? from.Sheet + cell.RelativeSheet
                                       : cell.Sheet};
    }

    static constexpr std::size_t mostCells = 6; // no argument uses more

    /// In a list of several, an empty cell is an empty text; alone it is 0, as in a formula.
    static Variant ValuesOf(const RangeReference& range) {
        const auto at = AddressOf(range);
        const bool isAlone = at.StartColumn == at.EndColumn && at.StartRow == at.EndRow;
        std::vector<Variant> values;
        for (sal_Int32 row = 0; row <= at.EndRow - at.StartRow; ++row) {
            for (sal_Int32 column = 0; column <= at.EndColumn - at.StartColumn; ++column) {
                const auto cell = range->getCellByPosition(column, row);
                const bool isEmpty = cell->getType() == table::CellContentType_EMPTY;
                values.push_back(isEmpty && !isAlone ? Variant("") : ResultOf(cell));
                if (values.size() == mostCells) {
                    return Variant::List(std::move(values));
                }
            }
        }
        return Variant::List(std::move(values));
    }

    Variant CellsOf(const std::string& range, double rows, double columns) const {
        std::vector<Variant> cells;
        for (int row = 1; row <= rows && cells.size() < mostCells; ++row) {
            for (int column = 1; column <= columns && cells.size() < mostCells; ++column) {
                const std::string cell = fmt::format("INDEX({};{};{})", range, row, column);
                cells.push_back(ValueOf(fmt::format(R"(IF(ISBLANK({0});"";{0}))", cell)));
            }
        }
        return Variant::List(std::move(cells));
    }

    Variant ValueOf(const std::string& expression) const {
        const OtherFormula other(document_, range_, ToOffice("=" + expression));
        return ResultOf(Cell());
    }

    static Variant ResultOf(const uno::Reference<table::XCell>& cell) {
        if (cell->getError() != 0) {
            return ErrorValue{cell->getError()};
        }
        sal_Int32 result = sheet::FormulaResult::VALUE;
        if (cell->getType() == table::CellContentType_FORMULA) {
            As<XPropertySet>(cell)->getPropertyValue("FormulaResultType2") >>= result;
        }
        if (cell->getType() == table::CellContentType_TEXT || result == sheet::FormulaResult::STRING) {
            return FromOffice(As<com::sun::star::text::XTextRange>(cell)->getString());
        }
        return cell->getValue();
    }

    void SetBlock(const VariantArray& block) const {
        if (block.bounds.DimensionCount() != 2) {
            throw PlatformError(ErrorNumber::TypeMismatch);
        }
        const auto rows = block.bounds[0].upper - block.bounds[0].lower + 1;
        for (std::size_t i = 0; i < block.elements.size(); ++i) {
            const auto index = static_cast<std::int32_t>(i);
            SetCell(range_->getCellByPosition(index / rows, index % rows), block.elements[i]);
        }
    }

    /// Enters a value into a cell as if it were typed. A text that begins with "=" is a formula in Excel's
    /// syntax.
    void SetCell(const uno::Reference<table::XCell>& cell, const Variant& value) const {
        const std::string text = ToText(value, {});
        if (text.starts_with('=')) {
            SetTokens(cell, text.substr(1));
        } else if (FormatOf(cell) == "@") {
            As<com::sun::star::text::XTextRange>(cell)->setString(ToOffice(text));
        } else {
            Type(cell, text);
        }
    }

    /// Enters a text in the document's language. The sheet gives a date a date's format, unless the cell has
    /// a format of its own.
    void Type(const uno::Reference<table::XCell>& cell, const std::string& text) const {
        const auto properties = As<XPropertySet>(cell);
        if (FormatOf(cell) == "General") {
            const auto types =
                As<util::XNumberFormatTypes>(As<util::XNumberFormatsSupplier>(document_)->getNumberFormats());
            properties->setPropertyValue("NumberFormat", uno::Any(types->getStandardIndex(Language())));
        }
        properties->setPropertyValue("FormulaLocal", uno::Any(ToOffice(text)));
    }

    /// The document's language; none for English (United States), which documents have unless it is changed:
    /// the office's language counts then.
    com::sun::star::lang::Locale Language() const {
        com::sun::star::lang::Locale language;
        As<XPropertySet>(document_)->getPropertyValue("CharLocale") >>= language;
        const bool isChosen = language.Language != "en" || language.Country != "US";
        return isChosen ? language : com::sun::star::lang::Locale();
    }

    void SetTokens(const uno::Reference<table::XCell>& cell, const std::string& formula) const {
        const auto parser = Parser(sheet::AddressConvention::XL_OOX);
        const auto place = As<sheet::XCellAddressable>(cell)->getCellAddress();
        As<sheet::XFormulaTokens>(cell)->setTokens(parser->parseFormula(ToOffice(formula), place));
    }

    uno::Reference<sheet::XFormulaParser> Parser(sal_Int16 convention) const {
        const auto factory = As<com::sun::star::lang::XMultiServiceFactory>(document_);
        const auto parser =
            As<sheet::XFormulaParser>(factory->createInstance("com.sun.star.sheet.FormulaParser"));
        const auto grammar = As<XPropertySet>(parser);
        grammar->setPropertyValue("CompileEnglish", uno::Any(true));
        grammar->setPropertyValue("FormulaConvention", uno::Any(convention));
        return parser;
    }

    rtl::OUString FormatOf(const uno::Reference<table::XCell>& cell) const {
        sal_Int32 key = 0;
        As<XPropertySet>(cell)->getPropertyValue("NumberFormat") >>= key;
        const auto formats = As<util::XNumberFormatsSupplier>(document_)->getNumberFormats();
        rtl::OUString format;
        formats->getByKey(key)->getPropertyValue("FormatString") >>= format;
        return format;
    }

    SheetDocument document_;
    RangeReference range_;
};

uno::Reference<com::sun::star::frame::XController> ControllerOf(const SheetDocument& document) {
    const auto controller = As<com::sun::star::frame::XModel>(document)->getCurrentController();
    if (!controller.is()) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    return controller;
}

/// The cell or range of an object, or the first of its ranges; null for any other object.
RangeReference FirstRange(const uno::Reference<uno::XInterface>& object) {
    const uno::Reference<sheet::XSheetCellRangeContainer> several(object, uno::UNO_QUERY);
    if (several.is()) {
        const auto addresses = several->getRangeAddresses();
        const uno::Reference<com::sun::star::container::XIndexAccess> ranges(several, uno::UNO_QUERY);
        return addresses.hasElements() ? RangeReference(ranges->getByIndex(0), uno::UNO_QUERY)
                                       : RangeReference();
    }
    return {object, uno::UNO_QUERY};
}

std::shared_ptr<CalcRange> FirstCell(const SheetDocument& document, const RangeReference& range) {
    const auto at = AddressOf(range);
    const RangeReference whole(range->getSpreadsheet(), uno::UNO_QUERY);
    return std::make_shared<CalcRange>(
        document, RangeOf(whole, at.StartColumn, at.StartRow, at.StartColumn, at.StartRow));
}

std::shared_ptr<SheetRange> CalcApplication::Cells(std::int32_t row, std::int32_t column) const {
    return Translating([&] {
        const auto view = As<sheet::XSpreadsheetView>(ControllerOf(document_));
        const RangeReference whole(view->getActiveSheet(), uno::UNO_QUERY);
        return std::make_shared<CalcRange>(document_,
                                           RangeOf(whole, column - 1, row - 1, column - 1, row - 1));
    });
}

std::shared_ptr<SheetRange> CalcApplication::Range(const SheetRange& first, const SheetRange& last) const {
    return Translating([&] {
        const auto view = As<sheet::XSpreadsheetView>(ControllerOf(document_));
        const RangeReference whole(view->getActiveSheet(), uno::UNO_QUERY);
        const auto [left, right] = std::minmax({first.Column(), last.Column()});
        const auto [top, bottom] = std::minmax({first.Row(), last.Row()});
        return std::make_shared<CalcRange>(document_,
                                           RangeOf(whole, left - 1, top - 1, right - 1, bottom - 1));
    });
}

} // namespace

std::shared_ptr<SheetRange> ActiveCellOf(const SheetDocument& document) {
    return ActiveFormulaCellOf(document);
}

std::shared_ptr<FormulaCell> ActiveFormulaCellOf(const SheetDocument& document) {
    auto cell = ChosenFormulaCellOf(document);
    if (!cell) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    return cell;
}

std::shared_ptr<FormulaCell> ChosenFormulaCellOf(const SheetDocument& document) {
    return Translating([&]() -> std::shared_ptr<FormulaCell> {
        const auto selection = As<com::sun::star::frame::XModel>(document)->getCurrentSelection();
        const RangeReference range = FirstRange(selection);
        return range.is() ? FirstCell(document, range) : nullptr;
    });
}

bool StandsRight(const SheetDocument& document, const SheetRange& cell) {
    return Translating([&] {
        const auto controller = ControllerOf(document);
        const auto spreadsheet = As<sheet::XSpreadsheetView>(controller)->getActiveSheet();
        const auto shown = As<sheet::XViewPane>(controller)->getVisibleRange();
        const auto leftOf = [&](sal_Int32 column) {
            com::sun::star::awt::Point place;
            As<XPropertySet>(spreadsheet->getCellByPosition(column, 0))->getPropertyValue("Position") >>=
                place;
            return place.X;
        };
        const auto first = leftOf(shown.StartColumn), last = leftOf(shown.EndColumn);
        sal_Int16 direction = 0;
        As<XPropertySet>(spreadsheet)->getPropertyValue("TableLayout") >>= direction;
        const bool isFar = std::abs(leftOf(cell.Column() - 1) - first) * 2 > std::abs(last - first);
        return isFar != (direction == com::sun::star::text::WritingMode2::RL_TB);
    });
}

std::shared_ptr<SheetRange> CellFrom(const uno::Any& object, const SheetDocument& document) {
    return FormulaCellFrom(object, document);
}

std::shared_ptr<FormulaCell> FormulaCellFrom(const uno::Any& object, const SheetDocument& document) {
    return Translating([&]() -> std::shared_ptr<FormulaCell> {
        const uno::Reference<uno::XInterface> any(object, uno::UNO_QUERY);
        const RangeReference range = FirstRange(any);
        return range.is() ? FirstCell(document, range) : nullptr;
    });
}

} // namespace qel::office
