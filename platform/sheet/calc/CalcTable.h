#pragma once

#include "platform/sheet/Workbook.h"
#include "platform/sheet/calc/CalcSheet.h"

#include <com/sun/star/lang/Locale.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/table/XCellRange.hpp>
#include <span>

namespace qel::office {

/// Writes a table into an empty sheet of a document.
class CalcTable {
public:
    using Sheet = com::sun::star::uno::Reference<com::sun::star::sheet::XSpreadsheet>;

    /// `table` outlives it.
    CalcTable(const SheetDocument& document, const Sheet& sheet, const TableSheet& table);

    /// Raises what the office and `progress` raise.
    void Write(const std::function<void(double share)>& progress) const;

private:
    using Range = com::sun::star::uno::Reference<com::sun::star::table::XCellRange>;
    using Row = std::span<const Variant>;

    Range Block(sal_Int32 column, sal_Int32 row, sal_Int32 columns, sal_Int32 rows) const;
    void Format(const Range& range, const CellFormat& format) const;
    void FormatColumns() const;
    /// Cells that do not count for the columns' widths have a turn of their own.
    void WriteHeading(bool areRemarks) const;
    void WriteHeadingCell(const HeadingCell& cell, sal_Int32 column, sal_Int32 row) const;
    void WriteCaptions() const;
    /// Lets the office measure the longest text of each column in place of all texts.
    void FitColumns() const;
    void WriteRows(const std::function<void(double share)>& progress) const;
    void Filter() const;

    void ReadFromRightToLeft() const;

    /// Of the heading and the table.
    sal_Int32 AllColumns() const;
    sal_Int32 CaptionRow() const { return static_cast<sal_Int32>(table_.heading.size()); }
    sal_Int32 Columns() const { return static_cast<sal_Int32>(table_.columns.size()); }
    sal_Int32 Rows() const { return static_cast<sal_Int32>(table_.rows.size()); }

    SheetDocument document_;
    Sheet sheet_;
    const TableSheet& table_;
    double nullDate_;
};

} // namespace qel::office
