#include "platform/sheet/SheetTexts.h"

#include <fmt/format.h>

namespace qel {

std::string CellName(std::int32_t row, std::int32_t column) {
    constexpr std::int32_t letters = 26;
    std::string name;
    for (; column > 0; column = (column - 1) / letters) {
        name.insert(name.begin(), static_cast<char>('A' + (column - 1) % letters));
    }
    return name + std::to_string(row);
}

std::string SumFormula(std::int32_t column, std::int32_t firstRow, std::int32_t lastRow) {
    return fmt::format("=SUM({}:{})", CellName(firstRow, column), CellName(lastRow, column));
}

std::string FormatCode(const CellFormat& format) {
    switch (format.kind) {
    case CellFormat::Kind::Number:
        return format.decimals > 0 ? "#,##0." + std::string(static_cast<std::size_t>(format.decimals), '0')
                                   : "#,##0";
    case CellFormat::Kind::Day:
        return "YYYY-MM-DD";
    case CellFormat::Kind::Month:
        return "YYYY-MM";
    default:
        return "@";
    }
}

} // namespace qel
