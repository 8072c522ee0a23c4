#pragma once

#include "platform/sheet/Workbook.h"
#include "platform/windows/DispatchObject.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace qel::windows {

/// Writes a table with its heading into an empty sheet.
class AutomationTable {
public:
    /// Both outlive it.
    AutomationTable(const DispatchObject& sheet, const TableSheet& table) : sheet_(sheet), table_(table) {}

    /// Raises AutomationError with the spreadsheet's description, and what `progress` raises.
    void Write(const std::function<void(double share)>& progress) const;

private:
    /// Rows and columns are counted from 1.
    DispatchObject Block(std::int32_t row, std::int32_t column, std::int32_t rows,
                         std::int32_t columns) const;
    std::int32_t CaptionRow() const { return static_cast<std::int32_t>(table_.heading.size()) + 1; }
    std::int32_t Rows() const { return static_cast<std::int32_t>(table_.rows.size()); }
    std::int32_t Columns() const { return static_cast<std::int32_t>(table_.columns.size()); }

    void FormatColumns() const;
    void WriteHeading(bool areRemarks) const;
    void WriteHeadingCell(const HeadingCell& cell, std::int32_t row, std::int32_t column) const;
    void WriteCaptions() const;
    void WriteRows(const std::function<void(double share)>& progress) const;
    VariantArray RowsFrom(std::size_t first, std::size_t count) const;
    void ReadFromRightToLeft() const;

    const DispatchObject& sheet_;
    const TableSheet& table_;
};

} // namespace qel::windows
