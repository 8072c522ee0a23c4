#pragma once

#include "platform/sheet/Spreadsheet.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qel::testing {

/// A sheet in memory. What is written is recorded in `log`: "format R3C2:R18C3 @", "formula R3C2 =...".
class SheetDouble {
public:
    using Place = std::pair<std::int32_t, std::int32_t>; ///< row and column, from 1

    Place activeCell = {3, 2};
    std::map<Place, Variant> cells;
    std::vector<std::string> log;
    bool isProtected = false; ///< refuses what is written

    /// The object that a macro passes; not always the active cell.
    std::shared_ptr<SheetRange> Cell(Place place);
};

} // namespace qel::testing
