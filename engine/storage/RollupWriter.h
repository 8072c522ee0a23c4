#pragma once

#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>

namespace qel::engine {

/// Writes all of a cube's rollups but the rows, for which the sections RollupSlots and RollupValues follow.
void WriteRollups(const RollupModel& rollups, const CubeModel& model, std::uint32_t cube,
                  CubeFileWriter& writer);

} // namespace qel::engine
