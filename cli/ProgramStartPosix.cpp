#include "cli/ProgramStart.h"

#include <csignal>

namespace qel {

struct ProgramStart::Consoles {};

ProgramStart::ProgramStart() {
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond the limit of a file's size fails instead
}

ProgramStart::~ProgramStart() = default;

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

Locale LocaleOfUser() { return {}; }

} // namespace qel
