#pragma once

#include "cube/ThreadState.h"

namespace qel::ModSetCube {

/// The members of that name (any letter case) on a level of [OBS]: one name may stand under several parents.
/// The open cube is asked for a name once. Raises what the provider raises, and 6 for a level of more than
/// 32,768 members.
std::shared_ptr<const ObsMembers> FindObsMembers(ThreadState& thread, const std::string& level,
                                                 const std::string& member);

} // namespace qel::ModSetCube
