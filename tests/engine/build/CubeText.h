#pragma once

#include "engine/storage/FactTable.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::engine {

/// Draws a hierarchy: one line per member, indented by level, with caption and key where they differ from the
/// name, and the sum of the first measure over the member's facts.
std::string DrawHierarchy(const Cube& cube, std::size_t hierarchy);

/// The sum of a measure (the number of facts for a count) over the facts under all members, by testing every
/// fact of one sort order.
std::int64_t SumOf(const Cube& cube, std::size_t measure, std::size_t projection,
                   const std::vector<std::pair<std::size_t, MemberId>>& members);

} // namespace qel::engine
