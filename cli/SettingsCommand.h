#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel settings`: every setting, its value and where it stands; `set` changes one, `make-database` makes the
/// local database.
void AddSettingsCommand(CLI::App& app, CommandContext& context);

} // namespace qel
