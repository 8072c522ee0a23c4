#pragma once

#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>

namespace qel::engine {

/// Writes all of a cube's aggregates but the rows, for which the sections AggregatePackedColumns and
/// AggregateValues follow.
void WriteAggregates(const AggregateModel& aggregates, const CubeModel& model, std::uint32_t cube,
                     CubeFileWriter& writer);

} // namespace qel::engine
