#pragma once

#include "platform/data/Rowset.h"
#include "qel/engine/Cellset.h"

namespace qel {

/// The answer as a table: one row per position of the rows axis; one row when there is no rows axis. A set of
/// members of several levels has a field for every level of their hierarchy, one of a single level for those
/// down to it. A member fills the fields of its level and of its ancestors' levels with captions; lower
/// levels are Null. A level that holds the All member has no field. Raises AutomationError for more than two
/// axes.
Rowset Flatten(const engine::Cube& cube, const engine::Cellset& cellset);

} // namespace qel
