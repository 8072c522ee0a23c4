#pragma once

#include "engine/storage/FactTable.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::engine {

/// A hierarchy as a person would draw it: a line for each member, indented by level, with its caption and key
/// where they differ from the name, and the sum of the first measure over the facts that it stands for.
std::string DrawHierarchy(const Cube& cube, std::size_t hierarchy);

/// The sum of a measure (the number of facts for a count) over the facts that lie in every member's ranges,
/// by looking at every fact in one sort order.
std::int64_t SumOf(const Cube& cube, std::size_t measure, std::size_t projection,
                   const std::vector<std::pair<std::size_t, MemberId>>& members);

} // namespace qel::engine
