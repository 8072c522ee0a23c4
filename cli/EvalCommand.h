#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel eval`: the values of formulas, one a line.
void AddEvalCommand(CLI::App& app, CommandContext& context);

} // namespace qel
