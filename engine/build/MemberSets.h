#pragma once

#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// Fills the model's groups: the sets of several ranges that stand for a member of an aggregate's key column,
/// or for all members of one name on a level, because statements select by name.
void FindGroups(const CubeModel& model, AggregateModel& aggregates);

/// The distinct sets of codes of the same members of one key column, in the form of AggregateKey, without the
/// set of all codes and without sets of too many ranges.
std::vector<KeyRange> MemberSets(const CubeModel& model, const CodeGroups& groups, std::size_t keyColumn);

} // namespace qel::engine
