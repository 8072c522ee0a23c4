#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel cube build`: makes a cube file from ledger files.
void AddCubeBuildCommand(CLI::App& cube, CommandContext& context);

} // namespace qel
