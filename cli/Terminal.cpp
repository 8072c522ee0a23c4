#include "cli/Terminal.h"

#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include "cli/ConsoleStreams.h"
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace qel {

namespace {

constexpr int usualColumns = 80;

#ifdef _WIN32
bool OutputIsTerminal() { return IsConsole(::GetStdHandle(STD_OUTPUT_HANDLE)); }

int TerminalColumns() {
    const HANDLE console = ::GetStdHandle(STD_ERROR_HANDLE);
    if (!IsConsole(console)) {
        return 0;
    }
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (::GetConsoleScreenBufferInfo(console, &screen) == FALSE) {
        return usualColumns;
    }
    return screen.srWindow.Right - screen.srWindow.Left + 1;
}
#else
bool OutputIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

int TerminalColumns() {
    if (isatty(STDERR_FILENO) == 0) {
        return 0;
    }
    winsize size{};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usualColumns;
}
#endif

} // namespace

bool StandardOutputIsTerminal() { return OutputIsTerminal(); }

int StandardErrorColumns() {
    const char* kind = std::getenv("TERM");
    const bool isDumb = kind != nullptr && std::string_view(kind) == "dumb";
    return isDumb ? 0 : TerminalColumns();
}

} // namespace qel
