#pragma once

#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The groups of codes that members of the aggregates' key columns stand for, and members of one name on a
/// level together, since statements select by name. The model's aggregates get them.
void FindGroups(const CubeModel& model, AggregateModel& aggregates);

/// The different sets of codes of the same members of one key column, as an aggregate's key has them, without
/// the one of all codes. Of a set of very many ranges there is nothing.
std::vector<KeyRange> MemberSets(const CubeModel& model, const CodeGroups& groups, std::size_t keyColumn);

} // namespace qel::engine
