#pragma once

#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// An empty model with the layout of a cube's aggregates: the columns of the packed key, the time column and
/// its buckets. FindGroups fills the groups.
AggregateModel LayOutAggregates(const CubeModel& model);

/// Whether the column can be in an aggregate's key: it is neither in the packed key nor the time.
bool IsAggregateKey(const AggregateModel& aggregates, std::size_t keyColumn);

} // namespace qel::engine
