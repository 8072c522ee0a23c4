#pragma once

#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The rollups of a cube without any yet: its word of narrow columns, its time and the granules of it.
RollupModel LayOutRollups(const CubeModel& model);

/// True for a column that rollups are made for: one that is neither in the word nor the time.
bool IsRollupKey(const RollupModel& rollups, std::size_t keyColumn);

/// The different ranges of codes that members of the column stand for, without the one of all codes. Of a
/// member of many ranges there are none.
std::vector<KeyRange> MemberRanges(const CubeModel& model, std::size_t keyColumn);

} // namespace qel::engine
