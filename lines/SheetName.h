#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// "Report C5": the name of a sheet that belongs to a cell of another one. It is none of those taken, in any
/// letter case, has at most 31 UTF-16 units, and no sign that spreadsheets refuse in names.
std::string SheetNameFor(std::string_view sheet, std::string_view cell,
                         const std::vector<std::string>& taken);

} // namespace qel
