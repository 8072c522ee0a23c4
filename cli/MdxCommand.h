#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel mdx`: runs a statement and prints its cellset.
void AddMdxCommand(CLI::App& app, CommandContext& context);

} // namespace qel
