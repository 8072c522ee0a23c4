#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

void AddCubeCheckCommand(CLI::App& cube, CommandContext& context);

} // namespace qel
