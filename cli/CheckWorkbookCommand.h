#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel check-workbook`: the formulas of workbooks whose 0 hides an error.
void AddCheckWorkbookCommand(CLI::App& app, CommandContext& context);

} // namespace qel
