#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel cube info`: what a cube file holds.
void AddCubeInfoCommand(CLI::App& cube, CommandContext& context);

} // namespace qel
