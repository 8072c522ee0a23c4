#include "cli/ConsoleStreams.h"
#include "cli/ProgramStart.h"
#include "platform/windows/UserLocale.h"
#include "platform/windows/WideText.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <optional>
#include <shellapi.h>

namespace qel {

struct ProgramStart::Consoles {
    std::optional<ConsoleInput> input;
    std::optional<ConsoleOutput> output, messages;
};

/// Without binary mode the C library would change line ends.
ProgramStart::ProgramStart() : consoles_(std::make_unique<Consoles>()) {
    for (std::FILE* file : {stdin, stdout, stderr}) {
        ::_setmode(::_fileno(file), _O_BINARY);
    }
    if (const HANDLE console = ::GetStdHandle(STD_INPUT_HANDLE); IsConsole(console)) {
        consoles_->input.emplace(std::cin, console);
    }
    if (const HANDLE console = ::GetStdHandle(STD_OUTPUT_HANDLE); IsConsole(console)) {
        consoles_->output.emplace(std::cout, console);
    }
    if (const HANDLE console = ::GetStdHandle(STD_ERROR_HANDLE); IsConsole(console)) {
        consoles_->messages.emplace(std::cerr, console);
    }
}

ProgramStart::~ProgramStart() = default;

std::vector<std::string> ProgramArguments(int /*argc*/, char** /*argv*/) {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; words && i < count; ++i) {
        arguments.push_back(windows::ToUtf8(words.get()[i]));
    }
    return arguments;
}

Locale LocaleOfUser() {
    Locale locale;
    locale.dateOrder = windows::UserLocale().dateOrder;
    return locale;
}

} // namespace qel
