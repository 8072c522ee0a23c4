#pragma once

#include "platform/data/Rowset.h"

#include <nlohmann/json_fwd.hpp>

#include <ostream>

namespace qel {

/// Aligned columns, numbers to the right with the decimals of their column.
void PrintRowsAsTable(const Rowset& rows, std::ostream& output);
/// RFC 4180 with line feeds: the fields' names, then the rows.
void PrintRowsAsCsv(const Rowset& rows, std::ostream& output);
/// {"columns": [name], "rows": [[text, number or null]], "total": number of rows without a limit, or null}.
nlohmann::ordered_json RowsJson(const Rowset& rows);

} // namespace qel
