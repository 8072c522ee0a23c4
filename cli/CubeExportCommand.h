#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel cube export`: writes cubes as a server's schema, tables and rows.
void AddCubeExportCommand(CLI::App& cube, CommandContext& context);

} // namespace qel
