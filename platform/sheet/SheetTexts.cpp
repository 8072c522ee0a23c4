#include "platform/sheet/SheetTexts.h"

#include "text/CellName.h"

#include <fmt/format.h>

namespace qel {

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
