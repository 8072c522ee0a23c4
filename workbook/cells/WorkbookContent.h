#pragma once

#include "platform/value/Variant.h"
#include "workbook/cells/CellReference.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qel {

/// A formula of a cell without the equals sign, as the file writes it.
struct SheetFormula {
    CellPlace place;
    std::string text;
};

struct SheetContent {
    std::string name;
    /// By place; those that are not here are empty. Null for a formula's that was never stored, an ErrorValue
    /// for an error that the cell shows.
    std::unordered_map<std::uint64_t, Variant> values;
    std::vector<SheetFormula> formulas; ///< those that may call functions of ours

    static std::uint64_t KeyOf(CellPlace place) { return std::uint64_t{place.row} << 32U | place.column; }
};

/// What a workbook's file keeps of its cells, or an open document has in them.
struct WorkbookContent {
    bool isOpenDocument = false; ///< formulas are written as OpenDocument has them
    double daysBefore = 0;       ///< from the first day of our dates to the one of its numeric dates
    std::vector<SheetContent> sheets;
    std::map<std::string, std::string> names; ///< in small letters, each with its formula

    const SheetContent* SheetNamed(const std::string& name) const;
};

/// Whether a formula may call a function of ours.
bool MayCallOurs(std::string_view formula);

} // namespace qel
