#pragma once

#include "engine/build/RecordReader.h"

namespace qel::engine {

/// Whether the current record looks like a line of totals, such as reports have at their end: some fields are
/// empty, and the first of the others says "total", or there are only numbers.
bool IsProbableTotal(const RecordReader& record);

} // namespace qel::engine
