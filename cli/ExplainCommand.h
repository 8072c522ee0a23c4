#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel explain`: how one formula gets its value.
void AddExplainCommand(CLI::App& app, CommandContext& context);

} // namespace qel
