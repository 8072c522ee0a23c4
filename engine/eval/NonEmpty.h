#pragma once

#include "engine/eval/Evaluator.h"
#include "engine/eval/TupleSet.h"

#include <span>

namespace qel::engine {

/// Removes from an axis the positions that have no facts in any combination of the other axes. Scans the
/// facts once per combination instead of once per cell. Returns false, with the axis unchanged, when some
/// cell is not a sum of reads of facts; the caller then has to evaluate the cells.
bool RemoveEmptyPositions(Evaluator& evaluator, std::span<const TupleSet* const> others, TupleSet& axis);

} // namespace qel::engine
