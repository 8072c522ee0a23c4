#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel members`: the lists that the wizards show of a cube.
void AddMembersCommand(CLI::App& app, CommandContext& context);

} // namespace qel
