#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel lang check`: what a language table lacks.
void AddLangCommand(CLI::App& app, CommandContext& context);

} // namespace qel
