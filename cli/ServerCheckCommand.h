#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel server check`: shows what a server offers, and whether formulas can read one of its cubes.
void AddServerCheckCommand(CLI::App& server, CommandContext& context);

} // namespace qel
