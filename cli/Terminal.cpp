#include "cli/Terminal.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace qel {

namespace {

constexpr int standardError = 2;

} // namespace

bool StandardErrorIsTerminal() {
#ifdef _WIN32
    return _isatty(standardError) != 0;
#else
    return isatty(standardError) != 0;
#endif
}

} // namespace qel
