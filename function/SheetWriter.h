#pragma once

#include "platform/dialog/MessageBox.h"
#include "platform/sheet/Spreadsheet.h"

#include <string>

namespace qel {

/// Puts "=OrmFunctionQel4.OrmQelFunction.FUNCTION(argumentText)" into the active cell. Raises what the sheet
/// raises.
void WriteFormula(const SheetApplication& application, const std::string& function,
                  const std::string& argumentText);

/// Puts the table of an argument text's parts at the active cell, its first rows as texts. Every cell of the
/// first 18 rows that is not empty asks first, in a box; nothing is written when one is not answered with
/// Yes. Rows beyond are overwritten. Raises what the sheet raises.
void WriteDetailTable(const SheetRange& xlActiveCell, const std::string& argumentText, std::int16_t iLang,
                      MessageDisplay& messages);

} // namespace qel
