#include "cli/CubeBuildCommand.h"
#include "cli/CubeCheckCommand.h"
#include "cli/CubeDraftCommand.h"
#include "cli/CubeExportCommand.h"
#include "cli/CubeInfoCommand.h"
#include "cli/CubeVerifyCommand.h"
#include "cli/EvalCommand.h"
#include "cli/ExplainCommand.h"
#include "cli/LangCommand.h"
#include "cli/LinesCommand.h"
#include "cli/MdxCommand.h"
#include "cli/MembersCommand.h"
#include "cli/ProgramStart.h"
#include "cli/ServerCheckCommand.h"
#include "cli/SettingsCommand.h"
#include "cli/ShellFilesCommand.h"
#include "cli/ShownStream.h"
#include "cli/Terminal.h"
#include "cli/Version.h"
#include "platform/data/ConnectionText.h"
#include "platform/data/choice/ChooseProvider.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "platform/data/xmla/settings/ConfiguredServers.h"
#include "platform/data/xmla/settings/ServerSettings.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <optional>

// Where the program is put together: its data providers, its streams and its commands.

namespace {

enum ExitStatus { succeeded = 0, askedFailed = 1, wrongUsage = 2 };

constexpr const char* description =
    "Reads OLAP cubes through the formulas of the accounting suite's spreadsheet add-in.";

constexpr const char* footer =
    R"(Results go to standard output, messages to standard error. Exit status: 0 done, 1 what was asked for failed,
2 wrong usage. 'qel COMMAND --help' shows a command's options and examples.)";

const char* NameOf(qel::DateOrder order) {
    switch (order) {
    case qel::DateOrder::MonthDayYear:
        return "mdy";
    case qel::DateOrder::YearMonthDay:
        return "ymd";
    default:
        return "dmy";
    }
}

void AddDateOrder(CLI::App& app, qel::Locale& locale) {
    const auto take = [&locale](const std::string& order) {
        if (qel::EqualIgnoringCase(order, "dmy")) {
            locale.dateOrder = qel::DateOrder::DayMonthYear;
        } else if (qel::EqualIgnoringCase(order, "mdy")) {
            locale.dateOrder = qel::DateOrder::MonthDayYear;
        } else if (qel::EqualIgnoringCase(order, "ymd")) {
            locale.dateOrder = qel::DateOrder::YearMonthDay;
        } else {
            throw CLI::ValidationError(fmt::format("--date-order takes dmy, mdy or ymd, not {}", order));
        }
    };
    app.add_option_function<std::string>("--date-order", take, "Order of day, month and year in date texts")
        ->trigger_on_parse()
        ->option_text(fmt::format("dmy|mdy|ymd (default {})", NameOf(locale.dateOrder)));
}

void AddAllowServer(CLI::App& app, qel::KnownServers& servers) {
    const auto take = [&servers](const std::vector<std::string>& addresses) {
        for (const auto& address : addresses) {
            if (!qel::IsServerAddress(address)) {
                throw CLI::ValidationError(
                    fmt::format("--allow-server takes an address, http://… or https://…, not {}", address));
            }
            servers.Answer(qel::ParseServerAddress(address), true);
        }
    };
    app.add_option_function<std::vector<std::string>>(
           "--allow-server", take, "A server that formulas may ask, as those in servers.ini; may be repeated")
        ->trigger_on_parse()
        ->allow_extra_args(false)
        ->option_text("ADDRESS");
}

void AddCommands(CLI::App& app, qel::CommandContext& context) {
    app.require_subcommand(1);
    app.fallthrough();
    qel::AddEvalCommand(app, context);
    qel::AddExplainCommand(app, context);
    qel::AddLinesCommand(app, context);
    qel::AddMdxCommand(app, context);
    qel::AddMembersCommand(app, context);
    auto* cube = app.add_subcommand("cube", "Make, describe and check cube files");
    cube->require_subcommand(1);
    cube->fallthrough();
    qel::AddCubeDraftCommand(*cube, context);
    qel::AddCubeBuildCommand(*cube, context);
    qel::AddCubeInfoCommand(*cube, context);
    qel::AddCubeExportCommand(*cube, context);
    qel::AddCubeVerifyCommand(*cube, context);
    qel::AddCubeCheckCommand(*cube, context);
    auto* server = app.add_subcommand("server", "Look at the cubes of servers");
    server->require_subcommand(1);
    server->fallthrough();
    qel::AddServerCheckCommand(*server, context);
    qel::AddSettingsCommand(app, context);
    qel::AddLangCommand(app, context);
    qel::AddShellFilesCommand(app, qel::programVersion);
}

/// The words of the command line. An option that is given an empty value ("--firma=") takes no other word for
/// it.
std::vector<std::string> WordsOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> words;
    for (const std::string& word : arguments) {
        if (word.starts_with("--") && word.size() > 3 && word.find('=') == word.size() - 1) {
            words.push_back(word.substr(0, word.size() - 1));
            words.emplace_back();
        } else {
            words.push_back(word);
        }
    }
    std::reverse(words.begin(), words.end()); // as the parser takes them
    return words;
}

int Run(const std::vector<std::string>& arguments, std::ostream& terminal) {
    qel::EmbeddedDataAccess cubeFiles;
    const auto known = std::make_shared<qel::KnownServers>(qel::ServerSettingsFile());
    qel::ConfiguredServers servers([known] { return qel::ReadServerOptions(known); });
    qel::CommandContext context{.providers = qel::ChooseProvider(cubeFiles, &servers, nullptr),
                                .servers = known,
                                .locale = qel::LocaleOfUser(),
                                .input = std::cin,
                                .output = std::cout,
                                .messages = std::cerr,
                                .terminal = terminal,
                                .terminalColumns = qel::StandardErrorColumns()};
    CLI::App app{description, "qel"};
    app.footer(footer);
    app.allow_windows_style_options(false); // "/x" is a path everywhere
    app.set_version_flag("--version", std::string("qel ") + qel::programVersion);
    AddDateOrder(app, context.locale);
    AddAllowServer(app, *known);
    app.add_flag_callback(
           "--verify-reads", [&cubeFiles] { cubeFiles.ReadIntoMemory(); },
           "Read cube files into memory, where no other program can change them, and check every page")
        ->trigger_on_parse();
    AddCommands(app, context);
    try {
        app.parse(WordsOf(arguments));
    } catch (const CLI::RequiredError& error) {
        const auto unknown = app.remaining(true); // an unknown command counts as a missing one
        if (unknown.empty()) {
            return app.exit(error, std::cout, std::cerr), wrongUsage;
        }
        std::cerr << fmt::format("qel: there is no command '{}'; see qel --help\n", unknown.front());
        return wrongUsage;
    } catch (const CLI::ParseError& error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? succeeded : wrongUsage;
    }
    return context.failed ? askedFailed : succeeded;
}

int Fail(const std::string& reason) {
    std::cout.flush();
    std::cerr << "qel: " << reason << '\n';
    return askedFailed;
}

} // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    const qel::ProgramStart start;
    // Results that go to a file or a program stay as they are.
    const qel::ShownStream messages(std::cerr);
    std::optional<qel::ShownStream> results;
    if (qel::StandardOutputIsTerminal()) {
        results.emplace(std::cout);
    }
    try {
        std::ostream terminal(messages.Target());
        const int status = Run(qel::ProgramArguments(argc, argv), terminal);
        std::cout.flush();
        return std::cout ? status : Fail("standard output cannot be written");
    } catch (const qel::AutomationError& error) {
        return Fail(fmt::format("{} (error {})", error.Description(), error.Number()));
    } catch (const qel::engine::EngineError& error) {
        return Fail(fmt::format("{} (error {})", error.what(), qel::ErrorNumberOf(error.Kind())));
    } catch (const std::bad_alloc&) {
        return Fail("there is not enough memory");
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
