#pragma once

#include "qel/engine/CubeFile.h"

#include <ostream>

namespace qel {

/// Prints what each cube took from each of its fact files: lines, and every measure's total to its last
/// decimal. Raises std::runtime_error for a file without totals.
void PrintTotals(const engine::CubeFile& file, std::ostream& output);

} // namespace qel
