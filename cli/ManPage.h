#pragma once

#include "cli/CommandModel.h"

namespace qel {

/// "qel-cube-build" for "qel cube build".
std::string PageName(const NamedCommand& command);

/// The man page of a command, section 1, in roff. `pages` are the names of the others.
std::string ManPage(const NamedCommand& command, const std::string& version,
                    const std::vector<std::string>& pages);

} // namespace qel
