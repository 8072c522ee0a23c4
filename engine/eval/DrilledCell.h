#pragma once

#include "engine/eval/LineColumns.h"
#include "engine/eval/LineSelection.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace qel::engine {

/// What a DRILLTHROUGH statement asks for, with its names resolved.
struct DrilledCell {
    std::vector<FactPart> parts;
    std::vector<LineColumn> columns;
    std::uint64_t firstRow = 0; ///< from 0
    std::uint64_t mostRows = 0;
};

/// Raises EngineError as RunDrillthrough does.
DrilledCell FindDrilledCell(const Cube& cube, std::string_view statement);

} // namespace qel::engine
