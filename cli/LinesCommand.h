#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel lines`: the lines of the ledger behind a formula's value.
void AddLinesCommand(CLI::App& app, CommandContext& context);

} // namespace qel
