#pragma once

#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The rollups of a cube without any yet: its word of narrow columns, its time and the granules of it. Groups
/// are left to FindGroups.
RollupModel LayOutRollups(const CubeModel& model);

/// True for a column that rollups are made for: one that is neither in the word nor the time.
bool IsRollupKey(const RollupModel& rollups, std::size_t keyColumn);

} // namespace qel::engine
