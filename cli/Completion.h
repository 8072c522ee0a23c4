#pragma once

#include "cli/CommandModel.h"

namespace qel {

// Scripts that complete commands, options and their listed values, in two shells; anything else is the name
// of a file.

std::string BashCompletion(const std::vector<NamedCommand>& commands);
std::string ZshCompletion(const std::vector<NamedCommand>& commands);

} // namespace qel
