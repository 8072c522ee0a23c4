#pragma once

#include "platform/data/DataAccess.h"

#include <string>
#include <vector>

namespace qel::ModSetCube {

/// What the statements need and the cube lacks, each with the arguments that fail without it ("no level
/// [Accounts].[AccountCodes].[AccountCode]: Accounts is always All"); empty for a cube of the whole
/// layout. Raises what the provider raises.
std::vector<std::string> FindLayoutFaults(const CubeDef& cube);

} // namespace qel::ModSetCube
