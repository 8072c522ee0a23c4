#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel server check`: tells what a server has, and whether formulas can read a cube of it.
void AddServerCheckCommand(CLI::App& server, CommandContext& context);

} // namespace qel
