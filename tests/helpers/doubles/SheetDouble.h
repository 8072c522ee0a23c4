#pragma once

#include "platform/sheet/Spreadsheet.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

/// A sheet in memory. Writes are recorded in `log`: "format R3C2:R18C3 @", "formula R3C2 =...".
class SheetDouble {
public:
    using Place = std::pair<std::int32_t, std::int32_t>; ///< row and column, from 1

    Place activeCell = {3, 2};
    std::map<Place, Variant> cells;
    std::vector<std::string> log;
    bool isProtected = false; ///< rejects writes

    /// The cell that a macro passes, which need not be the active one.
    std::shared_ptr<SheetRange> Cell(Place place);
};

} // namespace qel::test
