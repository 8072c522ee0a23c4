#pragma once

#include "platform/value/Variant.h"
#include "qel/engine/Cellset.h"

#include <string>
#include <vector>

namespace qel {

/// The answer to a statement as a table: a row for every position of the rows axis, without the top members
/// of all.
struct FlattenedRows {
    std::vector<std::string> fields;
    std::vector<std::vector<Variant>> rows; ///< each as long as `fields`
};

/// A set of members of several levels has a field for every level of their hierarchy, one of a single level
/// for those down to it. A member fills the fields of its level and of its ancestors' levels with captions;
/// lower levels are Null. A level that holds the member of all has no field. Without a rows axis there is one row. Raises
/// AutomationError for more than two axes.
FlattenedRows Flatten(const engine::Cube& cube, const engine::Cellset& cellset);

} // namespace qel
