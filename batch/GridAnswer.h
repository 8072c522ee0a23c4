#pragma once

#include "batch/GridPlan.h"
#include "platform/data/DataAccess.h"

#include <cstdint>

namespace qel::batch {

/// True when a member of an answer is the one that was asked for: of that dimension, with its own names at
/// the end of its unique name, and of its level. Letter case makes no difference.
bool IsMemberOf(const GridRow& asked, const CellsetMember& answered);

/// How an answer fits the grid that was asked for.
enum class GridFit : std::uint8_t {
    Exact,
    LacksRows, ///< some servers leave out members that they do not know, which shifts all that follow
    Differs
};

/// Compares both axes with what the grid asked for: their sizes, and every member in its order.
GridFit FitOf(const ValueGrid& grid, const Cellset& answer);

} // namespace qel::batch
