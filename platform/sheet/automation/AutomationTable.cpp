#include "platform/sheet/automation/AutomationTable.h"

#include "platform/sheet/SheetTexts.h"
#include "platform/windows/SafeArrayConversion.h"
#include "platform/windows/VariantConversion.h"

#include <algorithm>
#include <iterator>

namespace qel::windows {

namespace {

constexpr std::int32_t captionColour = 0xE6E6E6;
constexpr std::int32_t nameColour = 0x666666;
constexpr std::int32_t rightToLeft = -5004; // xlRTL
constexpr std::size_t rowsAtOnce = 5'000;

/// A cell in which the spreadsheet shows nothing.
Variant InCell(const Variant& value) { return value.Is<Null>() ? Variant(Empty{}) : value; }

} // namespace

void AutomationTable::Write(const std::function<void(double share)>& progress) const {
    FormatColumns();
    WriteHeading(false);
    WriteCaptions();
    WriteRows(progress);
    Block(CaptionRow(), 1, Rows() + 1, Columns()).Call(L"AutoFilter");
    sheet_.Child(L"UsedRange").Child(L"Columns").Call(L"AutoFit");
    WriteHeading(true); // which run over the cells beside them
    if (table_.isRightToLeft) {
        ReadFromRightToLeft();
    }
}

DispatchObject AutomationTable::Block(std::int32_t row, std::int32_t column, std::int32_t rows,
                                      std::int32_t columns) const {
    const DispatchObject first = sheet_.Child(L"Cells", ArgumentList(row, column));
    const DispatchObject last = sheet_.Child(L"Cells", ArgumentList(row + rows - 1, column + columns - 1));
    return sheet_.Child(L"Range", ArgumentList(first, last));
}

void AutomationTable::FormatColumns() const {
    std::int32_t column = 0;
    for (const SheetColumn& own : table_.columns) {
        const DispatchObject cells = Block(CaptionRow() + 1, ++column, std::max(Rows(), 1), 1);
        cells.Put(L"NumberFormat", ToArgument(FormatCode(own.format)));
    }
}

void AutomationTable::WriteHeading(bool areRemarks) const {
    std::int32_t row = 0;
    for (const auto& cells : table_.heading) {
        ++row;
        std::int32_t column = 0;
        for (const HeadingCell& cell : cells) {
            ++column;
            if ((cell.kind == HeadingCell::Kind::Remark) == areRemarks) {
                WriteHeadingCell(cell, row, column);
            }
        }
    }
}

void AutomationTable::WriteHeadingCell(const HeadingCell& cell, std::int32_t row, std::int32_t column) const {
    const bool isSum = cell.kind == HeadingCell::Kind::SumOfColumn;
    if (!isSum && cell.value.Is<Empty>()) {
        return;
    }
    const DispatchObject range = Block(row, column, 1, 1);
    range.Put(L"NumberFormat", ToArgument(FormatCode(cell.format)));
    if (cell.kind == HeadingCell::Kind::Name) {
        range.Child(L"Font").Put(L"Color", ToArgument(nameColour));
    }
    if (cell.isBold) {
        range.Child(L"Font").Put(L"Bold", ToAutomation(true));
    }
    if (isSum) {
        const std::int32_t last = CaptionRow() + std::max(Rows(), 1);
        range.Put(L"Formula", ToArgument(SumFormula(column, CaptionRow() + 1, last)));
    } else {
        range.Put(L"Value", ToAutomation(InCell(cell.value)));
    }
}

void AutomationTable::WriteCaptions() const {
    VariantArray captions;
    captions.bounds = {{0, 0}, {0, Columns() - 1}};
    std::transform(table_.columns.begin(), table_.columns.end(), std::back_inserter(captions.elements),
                   [](const SheetColumn& column) { return Variant(column.caption); });
    const DispatchObject range = Block(CaptionRow(), 1, 1, Columns());
    range.Put(L"NumberFormat", ToArgument(FormatCode({})));
    range.Put(L"Value", ToAutomationArray(captions));
    range.Child(L"Font").Put(L"Bold", ToAutomation(true));
    range.Child(L"Interior").Put(L"Color", ToArgument(captionColour));
}

void AutomationTable::WriteRows(const std::function<void(double share)>& progress) const {
    for (std::size_t first = 0; first < table_.rows.size(); first += rowsAtOnce) {
        const std::size_t count = std::min(rowsAtOnce, table_.rows.size() - first);
        const DispatchObject range = Block(CaptionRow() + 1 + static_cast<std::int32_t>(first), 1,
                                           static_cast<std::int32_t>(count), Columns());
        range.Put(L"Value", ToAutomationArray(RowsFrom(first, count)));
        progress(static_cast<double>(first + count) / static_cast<double>(table_.rows.size()));
    }
}

VariantArray AutomationTable::RowsFrom(std::size_t first, std::size_t count) const {
    VariantArray array;
    array.bounds = {{0, static_cast<std::int32_t>(count) - 1}, {0, Columns() - 1}};
    array.elements.reserve(count * table_.columns.size());
    for (std::size_t column = 0; column < table_.columns.size(); ++column) { // rows vary fastest
        for (std::size_t row = first; row < first + count; ++row) {
            array.elements.push_back(InCell(table_.rows[row][column]));
        }
    }
    return array;
}

void AutomationTable::ReadFromRightToLeft() const {
    sheet_.Put(L"DisplayRightToLeft", ToAutomation(true));
    sheet_.Child(L"UsedRange").Put(L"ReadingOrder", ToArgument(rightToLeft));
}

} // namespace qel::windows
