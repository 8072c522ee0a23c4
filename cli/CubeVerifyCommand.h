#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel cube verify`: checks every byte of a cube file.
void AddCubeVerifyCommand(CLI::App& cube, CommandContext& context);

} // namespace qel
