#pragma once

#include "engine/eval/Evaluator.h"
#include "engine/eval/TupleSet.h"

#include <span>

namespace qel::engine {

/// Takes the positions without facts out of an axis, seen over all combinations of the other axes, by reading
/// the facts once a combination instead of once a cell. False, with the axis as it was, when a cell is more
/// than a read of facts; then the cells themselves must tell.
bool RemoveEmptyPositions(Evaluator& evaluator, std::span<const TupleSet* const> others, TupleSet& axis);

} // namespace qel::engine
