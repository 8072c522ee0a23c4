#pragma once

#include "cube/ThreadState.h"
#include "platform/data/Providers.h"

#include <string>

namespace qel::ModSetCube {

std::string ComposeMemberNameStatement(const std::string& cubeName, const std::string& dimType,
                                       const std::string& dimMember);

/// The name of a summary group. The key itself when it is taken to be a name already (not a number and longer
/// than three characters), empty for any other dimension type. Raises what the provider raises, and when no
/// member has that key.
std::string GetMemberName(const ThreadState& thread, const Providers& providers, const Locale& locale,
                          const std::string& cubeName, const std::string& dimType,
                          const std::string& dimMember);

} // namespace qel::ModSetCube
