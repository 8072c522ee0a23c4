#pragma once

#include "batch/GridPlan.h"
#include "platform/data/DataAccess.h"

namespace qel::batch {

/// True when a member of an answer is the one that was asked for: of that dimension, with its own names at
/// the end of its unique name, and of its level. Letter case makes no difference.
bool IsMemberOf(const GridRow& asked, const CellsetMember& answered);

/// Compares both axes with what the grid asked for: their sizes, and every member in its order. Raises
/// AutomationError for any difference: a server may leave out members that it does not know, which would
/// shift the values of all that follow.
void RequireAnswerTo(const ValueGrid& grid, const Cellset& answer);

} // namespace qel::batch
