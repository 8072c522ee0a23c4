#pragma once

#include "platform/data/Providers.h"
#include "platform/data/xmla/settings/KnownServers.h"

#include <ostream>

namespace qel {

/// What the commands work with; made in Main.cpp.
struct CommandContext {
    Providers providers;
    std::shared_ptr<KnownServers> servers;
    Locale locale;
    std::istream& input;
    std::ostream& output;    ///< results
    std::ostream& messages;  ///< everything else, without characters that could change a terminal
    std::ostream& terminal;  ///< the same without that filter, for what moves the cursor
    int terminalColumns = 0; ///< of the terminal that messages go to, 0 for none
    bool failed = false;     ///< set by a command that did what it could and has told what it could not

    /// A server that the user names as an argument of its own is allowed; one in a formula is not, because
    /// formulas come from documents.
    void AllowNamed(const std::string& cube) const;
};

} // namespace qel
