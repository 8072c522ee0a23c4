#pragma once

#include "platform/sheet/Workbook.h"

#include <cstdint>
#include <string>

// Texts that spreadsheets read alike, in English.

namespace qel {

/// "=SUM(C12:C40)".
std::string SumFormula(std::int32_t column, std::int32_t firstRow, std::int32_t lastRow);

/// "#,##0.00" and the like.
std::string FormatCode(const CellFormat& format);

} // namespace qel
