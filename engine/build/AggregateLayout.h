#pragma once

#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The aggregates of a cube without any yet: its word of narrow columns, its time and the buckets of it.
/// Groups are left to FindGroups.
AggregateModel LayOutAggregates(const CubeModel& model);

/// True for a column that aggregates are made for: one that is neither in the word nor the time.
bool IsAggregateKey(const AggregateModel& aggregates, std::size_t keyColumn);

} // namespace qel::engine
