#include "platform/sheet/calc/CalcTable.h"

#include "platform/office/OfficeText.h"
#include "platform/office/OtherInterface.h"
#include "platform/sheet/SheetTexts.h"
#include "platform/sheet/calc/NullDate.h"

#include <algorithm>
#include <cmath>
#include <com/sun/star/awt/FontWeight.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XUnnamedDatabaseRanges.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/text/WritingMode2.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>
#include <unordered_map>

namespace qel::office {

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;
namespace table = com::sun::star::table;
namespace util = com::sun::star::util;
using com::sun::star::beans::XPropertySet;

namespace {

constexpr sal_Int32 captionColour = 0xE6E6E6;
constexpr sal_Int32 nameColour = 0x666666;
constexpr sal_Int32 filterButton = 450; ///< the width of the one that stands in a caption, in 1/100 mm
constexpr std::size_t rowsAtOnce = 10'000;

/// Office texts of a column's values, each made once: ledgers repeat them.
class CellMaker {
public:
    explicit CellMaker(double nullDate) : nullDate_(nullDate) {}

    uno::Any Make(const Variant& value) {
        if (value.Is<std::string>()) {
            return uno::Any(TextOf(value.As<std::string>()));
        }
        if (value.Is<double>()) {
            return uno::Any(value.As<double>());
        }
        if (value.Is<AutomationDate>()) {
            return uno::Any(value.As<AutomationDate>().days - nullDate_);
        }
        return uno::Any(rtl::OUString()); // an empty cell; an Any without a value would be an error
    }

private:
    const rtl::OUString& TextOf(const std::string& text) {
        if (last_ != nullptr && last_->first == text) {
            return last_->second;
        }
        constexpr std::size_t most = 10'000;
        if (texts_.size() > most) { // of a column whose texts all differ
            texts_.clear();
            last_ = nullptr;
        }
        const auto [found, isNew] = texts_.try_emplace(text);
        if (isNew) {
            found->second = ToOffice(text);
        }
        last_ = &*found;
        return found->second;
    }

    double nullDate_;
    std::unordered_map<std::string, rtl::OUString> texts_;
    const std::pair<const std::string, rtl::OUString>* last_ = nullptr;
};

/// Grows with the width of a column's values.
double Width(const Variant& value) {
    if (value.Is<std::string>()) {
        return static_cast<double>(value.As<std::string>().size());
    }
    return value.Is<double>() ? std::abs(value.As<double>()) : 0;
}

uno::Sequence<uno::Sequence<uno::Any>> OneRow(const uno::Sequence<uno::Any>& cells) { return {&cells, 1}; }

/// While one lives, the document's rows keep their heights. To measure new cells takes as long as to write
/// them.
class SetHeights {
public:
    explicit SetHeights(const uno::Reference<XPropertySet>& document) : document_(document) {
        document_->getPropertyValue(Property()) >>= wasEnabled_;
        document_->setPropertyValue(Property(), uno::Any(false));
    }
    ~SetHeights() {
        try {
            document_->setPropertyValue(Property(), uno::Any(wasEnabled_));
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the document was closed
        }
    }
    SetHeights(const SetHeights&) = delete;
    SetHeights& operator=(const SetHeights&) = delete;

private:
    static rtl::OUString Property() { return "IsAdjustHeightEnabled"; }

    uno::Reference<XPropertySet> document_;
    bool wasEnabled_ = true;
};

void SetBold(const uno::Reference<XPropertySet>& properties) {
    for (const char* name : {"CharWeight", "CharWeightComplex"}) {
        properties->setPropertyValue(rtl::OUString::createFromAscii(name),
                                     uno::Any(com::sun::star::awt::FontWeight::BOLD));
    }
}

rtl::OUString SumOf(const table::CellRangeAddress& range) {
    return ToOffice(SumFormula(range.StartColumn + 1, range.StartRow + 1, range.EndRow + 1));
}

} // namespace

CalcTable::CalcTable(const SheetDocument& document, const Sheet& sheet, const TableSheet& table)
    : document_(document), sheet_(sheet), table_(table), nullDate_(NullDateOf(As<XPropertySet>(document))) {}

void CalcTable::Write(const std::function<void(double share)>& progress) const {
    FormatColumns();
    WriteHeading(false);
    WriteCaptions();
    FitColumns();
    WriteHeading(true);
    if (table_.isRightToLeft) {
        ReadFromRightToLeft();
    }
    {
        const SetHeights heights(As<XPropertySet>(document_));
        WriteRows(progress);
    }
    Filter();
}

/// The sheet, and the texts in it: otherwise signs at their ends stand on the wrong side.
void CalcTable::ReadFromRightToLeft() const {
    const uno::Any direction(com::sun::star::text::WritingMode2::RL_TB);
    As<XPropertySet>(sheet_)->setPropertyValue("TableLayout", direction);
    As<XPropertySet>(Block(0, 0, AllColumns(), CaptionRow() + 1 + Rows()))
        ->setPropertyValue("WritingMode", direction);
}

sal_Int32 CalcTable::AllColumns() const {
    std::size_t columns = table_.columns.size();
    for (const auto& row : table_.heading) {
        columns = std::max(columns, row.size());
    }
    return static_cast<sal_Int32>(columns);
}

CalcTable::Range CalcTable::Block(sal_Int32 column, sal_Int32 row, sal_Int32 columns, sal_Int32 rows) const {
    return sheet_->getCellRangeByPosition(column, row, column + columns - 1, row + rows - 1);
}

void CalcTable::Format(const Range& range, const CellFormat& format) const {
    const com::sun::star::lang::Locale english("en", "US", {});
    com::sun::star::lang::Locale own;
    As<XPropertySet>(document_)->getPropertyValue("CharLocale") >>= own;
    const auto formats = As<util::XNumberFormatsSupplier>(document_)->getNumberFormats();
    const sal_Int32 key = formats->addNewConverted(ToOffice(FormatCode(format)), english, own);
    As<XPropertySet>(range)->setPropertyValue("NumberFormat", uno::Any(key));
}

void CalcTable::FormatColumns() const {
    for (sal_Int32 column = 0; column < Columns(); ++column) {
        Format(Block(column, CaptionRow() + 1, 1, Rows()),
               table_.columns[static_cast<std::size_t>(column)].format);
    }
}

void CalcTable::WriteHeading(bool areRemarks) const {
    sal_Int32 row = 0;
    for (const auto& cells : table_.heading) {
        sal_Int32 column = 0;
        for (const HeadingCell& cell : cells) {
            if ((cell.kind == HeadingCell::Kind::Remark) == areRemarks) {
                WriteHeadingCell(cell, column, row);
            }
            ++column;
        }
        ++row;
    }
}

void CalcTable::WriteHeadingCell(const HeadingCell& cell, sal_Int32 column, sal_Int32 row) const {
    if (cell.kind != HeadingCell::Kind::SumOfColumn && cell.value.Is<Empty>()) {
        return;
    }
    const Range range = Block(column, row, 1, 1);
    Format(range, cell.format);
    if (cell.kind == HeadingCell::Kind::Name) {
        As<XPropertySet>(range)->setPropertyValue("CharColor", uno::Any(nameColour));
    }
    if (cell.isBold) {
        SetBold(As<XPropertySet>(range));
    }
    if (cell.kind == HeadingCell::Kind::SumOfColumn) {
        const auto below = As<sheet::XCellRangeAddressable>(Block(column, CaptionRow() + 1, 1, Rows()));
        range->getCellByPosition(0, 0)->setFormula(SumOf(below->getRangeAddress()));
        return;
    }
    const uno::Any value = CellMaker(nullDate_).Make(cell.value);
    As<sheet::XCellRangeData>(range)->setDataArray(OneRow({&value, 1}));
}

void CalcTable::WriteCaptions() const {
    uno::Sequence<uno::Any> captions(Columns());
    std::transform(table_.columns.begin(), table_.columns.end(), captions.getArray(),
                   [](const SheetColumn& column) { return uno::Any(ToOffice(column.caption)); });
    const Range range = Block(0, CaptionRow(), Columns(), 1);
    Format(range, {});
    As<sheet::XCellRangeData>(range)->setDataArray(OneRow(captions));
    SetBold(As<XPropertySet>(range));
    As<XPropertySet>(range)->setPropertyValue("CellBackColor", uno::Any(captionColour));
}

void CalcTable::FitColumns() const {
    std::vector<const Variant*> widest(table_.columns.size());
    for (const auto& row : table_.rows) {
        for (std::size_t column = 0; column < widest.size(); ++column) {
            if (widest[column] == nullptr || Width(row[column]) > Width(*widest[column])) {
                widest[column] = &row[column];
            }
        }
    }
    uno::Sequence<uno::Any> longest(Columns());
    std::transform(widest.begin(), widest.end(), longest.getArray(), [&](const Variant* value) {
        return value == nullptr ? uno::Any() : CellMaker(nullDate_).Make(*value);
    });
    As<sheet::XCellRangeData>(Block(0, CaptionRow() + 1, Columns(), 1))->setDataArray(OneRow(longest));
    const sal_Int32 columns = AllColumns();
    const auto fitted = As<table::XColumnRowRange>(Block(0, 0, columns, 1))->getColumns();
    As<XPropertySet>(fitted)->setPropertyValue("OptimalWidth", uno::Any(true));
    for (sal_Int32 column = 0; column < columns; ++column) {
        const uno::Reference<XPropertySet> properties(fitted->getByIndex(column), uno::UNO_QUERY_THROW);
        sal_Int32 width = 0;
        properties->getPropertyValue("Width") >>= width;
        properties->setPropertyValue("Width", uno::Any(width + filterButton));
    }
}

void CalcTable::WriteRows(const std::function<void(double share)>& progress) const {
    std::vector<CellMaker> makers(table_.columns.size(), CellMaker(nullDate_));
    for (std::size_t first = 0; first < table_.rows.size(); first += rowsAtOnce) {
        const std::size_t count = std::min(rowsAtOnce, table_.rows.size() - first);
        uno::Sequence<uno::Sequence<uno::Any>> block(static_cast<sal_Int32>(count));
        auto* rows = block.getArray();
        for (std::size_t row = 0; row < count; ++row) {
            rows[row].realloc(Columns());
            auto* cells = rows[row].getArray();
            for (std::size_t column = 0; column < makers.size(); ++column) {
                cells[column] = makers[column].Make(table_.rows[first + row][column]);
            }
        }
        const Range range = Block(0, CaptionRow() + 1 + static_cast<sal_Int32>(first), Columns(),
                                  static_cast<sal_Int32>(count));
        As<sheet::XCellRangeData>(range)->setDataArray(block);
        progress(static_cast<double>(first + count) / static_cast<double>(table_.rows.size()));
    }
}

void CalcTable::Filter() const {
    const auto address =
        As<sheet::XCellRangeAddressable>(Block(0, CaptionRow(), Columns(), Rows() + 1))->getRangeAddress();
    uno::Reference<sheet::XUnnamedDatabaseRanges> ranges;
    As<XPropertySet>(document_)->getPropertyValue("UnnamedDatabaseRanges") >>= ranges;
    ranges->setByTable(address);
    uno::Reference<XPropertySet> range;
    ranges->getByTable(address.Sheet) >>= range;
    range->setPropertyValue("AutoFilter", uno::Any(true));
}

} // namespace qel::office
