#pragma once

#include "cli/CommandContext.h"

namespace CLI {
class App;
}

namespace qel {

/// `qel shell-files`, which --help does not list: the build writes with it what is installed beside the
/// program. Commands that are added later are not in it.
void AddShellFilesCommand(CLI::App& app, const std::string& version);

} // namespace qel
