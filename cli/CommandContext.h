#pragma once

#include "platform/data/Providers.h"

#include <ostream>

namespace qel {

/// What the commands work with; made in Main.cpp.
struct CommandContext {
    Providers providers;
    Locale locale;
    std::istream& input;
    std::ostream& output;    ///< results
    std::ostream& messages;  ///< everything else
    int terminalColumns = 0; ///< of the terminal that messages go to, 0 for none
    bool failed = false;     ///< set by a command that did what it could and has told what it could not
};

} // namespace qel
