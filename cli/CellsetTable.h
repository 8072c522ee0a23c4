#pragma once

#include "platform/data/DataAccess.h"

#include <string>
#include <vector>

namespace qel {

/// The members of one position of an axis.
using Tuple = std::vector<CellsetMember>;

/// A cellset, read whole. Columns or rows that the statement has not are one position without members. Rows
/// are the combinations of all axes but the columns, the last axis varying slowest; its members come first.
struct CellsetTable {
    std::size_t axisCount = 0;
    std::vector<Tuple> columns, rows;
    std::vector<std::vector<Variant>> cells; ///< by row, then column
    /// The axes that rows combine: the statement's rows and those behind them. Empty for up to two axes.
    std::vector<std::vector<Tuple>> combined = {};
};

CellsetTable ReadGrid(const Cellset& cellset);

/// What a person sees of a member: its caption, or its name when it has none.
const std::string& CaptionOf(const CellsetMember& member);

} // namespace qel
