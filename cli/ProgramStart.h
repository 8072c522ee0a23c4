#pragma once

#include "platform/value/AutomationDate.h"

#include <memory>
#include <string>
#include <vector>

namespace qel {

/// While it lives, the standard streams carry UTF-8 as it stands, to and from files, pipes and consoles, and
/// a write beyond a limit fails instead of ending the program.
class ProgramStart {
public:
    ProgramStart();
    ~ProgramStart();
    ProgramStart(const ProgramStart&) = delete;
    ProgramStart& operator=(const ProgramStart&) = delete;

private:
    struct Consoles;
    std::unique_ptr<Consoles> consoles_; ///< null where the system's own streams serve
};

/// What the program was started with, without its name, in UTF-8.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// The user's order of dates; everything else is the same for everybody.
Locale LocaleOfUser();

} // namespace qel
