#pragma once

#include "platform/data/DataAccess.h"

#include <string>
#include <vector>

namespace qel {

/// The members of one position of an axis.
using Tuple = std::vector<CellsetMember>;

/// A cellset of at most two axes, read whole. An axis that the statement has not is one position without
/// members.
struct CellsetTable {
    std::size_t axisCount = 0;
    std::vector<Tuple> columns, rows;
    std::vector<std::vector<Variant>> cells; ///< by row, then column
};

/// Raises AutomationError for more than two axes.
CellsetTable ReadGrid(const Cellset& cellset);

/// What a person sees of a member: its caption, or its name when it has none.
const std::string& CaptionOf(const CellsetMember& member);

} // namespace qel
