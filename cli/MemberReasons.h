#pragma once

#include "cube/ValueQuery.h"
#include "platform/data/DataAccess.h"

#include <string>
#include <vector>

namespace qel {

/// What a query names and the cube does not have, with what it has instead: "[OBS].[Level2] has no member
/// \"Nort\"; did you mean \"North\"?". Raises what the provider raises.
std::vector<std::string> FindMissingMembers(const CubeDef& cube, const ModSetCube::ValueQuery& query);

} // namespace qel
