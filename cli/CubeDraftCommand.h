#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel cube draft`: writes the definition of a cube for files that it looks at.
void AddCubeDraftCommand(CLI::App& cube, CommandContext& context);

} // namespace qel
