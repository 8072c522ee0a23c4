#pragma once

#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>

namespace qel::engine {

/// Writes a cube's aggregates except their rows; the caller writes the sections AggregatePackedColumns and
/// AggregateValues afterwards.
void WriteAggregates(const AggregateModel& aggregates, const CubeModel& model, std::uint32_t cube,
                     CubeFileWriter& writer);

} // namespace qel::engine
