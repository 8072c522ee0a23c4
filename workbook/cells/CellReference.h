#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// A cell, counted from 0.
struct CellPlace {
    std::uint32_t row = 0, column = 0;
};

/// "B7".
std::string CellName(CellPlace place);

/// The place that "$B$7" names, with `rest` behind it; none for another text.
std::optional<CellPlace> ReadCellName(std::string_view text, std::string_view& rest);

/// Cells that a formula refers to.
struct CellRange {
    std::string sheet; ///< empty for the sheet of the formula
    CellPlace first, last;
    bool isElsewhere = false; ///< in another file
};

/// A reference as one of the two kinds of files writes it: "'My sheet'!$A$1:B2" or "[$'My sheet'.A1:.B2]",
/// which an open document has without brackets. None for any other text.
std::optional<CellRange> ReadReference(std::string_view text, bool isOpenDocument);

/// A formula that several cells of an .xlsx file share, as it reads `down` and `right` of its first cell.
std::string MovedFormula(std::string_view formula, std::int64_t down, std::int64_t right);

} // namespace qel
