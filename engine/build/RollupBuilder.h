#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The rollups of a cube, and for those that are rows the numbers of their facts, one rollup behind the
/// other.
struct BuiltRollups {
    RollupModel model;
    std::vector<std::vector<std::uint32_t>> rows;
};

/// Chooses the rollups and sums them, on two processors. The model has its projections.
BuiltRollups BuildRollups(const CubeModel& model, const FactColumns& facts);

} // namespace qel::engine
