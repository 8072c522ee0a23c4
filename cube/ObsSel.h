#pragma once

#include "cube/ThreadState.h"

#include <string>

namespace qel::ModSetCube {

/// The text of the calculated member [Obs].Sel: the sum over every member of that name (any letter case) on a
/// level of [OBS]. Raises what the provider raises, and 6 for a level of more than 32,768 members.
std::string BuildObsSel(const ThreadState& thread, DataAccess& dataAccess, const std::string& level,
                        const std::string& member);

} // namespace qel::ModSetCube
