#include "cli/CubeDraftCommand.h"

#include "cli/CubeDraft.h"
#include "cli/Interruption.h"
#include "cli/ProgressBar.h"
#include "files/AtomicFile.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* cubeDraftDescription = "Write a first definition for ledger files in CSV";

constexpr const char* cubeDraftFooter =
    R"(Reads every file and finds how it is written (encoding, delimiter, decimal sign, order of dates), which columns hold
dates, amounts and codes, and how they relate. A file with dates and amounts is a part of the ledger; the others are
tables of its codes, such as accounts. The definition has every dimension that formulas name, and comments where
something was guessed. Look it through, then build it with 'qel cube build'. Lines above the header, such as a title, are
skipped. Lines that the build cannot use, such as a total, are listed with the number of the first one and the reason.

Columns are recognised by their headers, in English or Hebrew: account, cost centre, activity, project, firm, company,
region, branch, unit, currency and the like. Rename a header, or edit the definition, where that fails.

Example:
  qel cube draft ledger.csv accounts.csv cost_centres.csv --output ledger.json)";

struct DraftArguments {
    std::vector<std::string> files;
    std::string output;
    bool force = false;
};

DraftTable ReadTable(const std::string& file, CommandContext& context) {
    ProgressBar bar(context.terminal, context.terminalColumns);
    const Interruption interruption;
    const auto progress = [&](double share) {
        interruption.Check("interrupted; nothing was written");
        bar.Show("Reading " + file, share);
    };
    DraftTable table;
    table.profile = engine::ProfileSource(PathFromUtf8(file), progress);
    table.roles = FindRoles(table.profile);
    table.name = PathToUtf8(PathFromUtf8(file).stem());
    return table;
}

std::vector<DraftTable> ReadTables(const std::vector<std::string>& files, CommandContext& context) {
    std::vector<DraftTable> tables;
    for (const auto& file : files) {
        auto table = ReadTable(file, context);
        const auto isTaken = [&](const std::string& name) {
            return std::any_of(tables.begin(), tables.end(),
                               [&](const auto& other) { return other.name == name; });
        };
        const auto name = table.name;
        for (int i = 2; isTaken(table.name); ++i) {
            table.name = fmt::format("{}_{}", name, i);
        }
        tables.push_back(std::move(table));
    }
    return tables;
}

void RefuseOutput(const DraftArguments& arguments) {
    const auto output = PathFromUtf8(arguments.output);
    std::error_code error;
    for (const auto& file : arguments.files) {
        if (std::filesystem::equivalent(output, PathFromUtf8(file), error)) {
            throw std::runtime_error(arguments.output + " is one of the files to read");
        }
    }
    if (!arguments.force && std::filesystem::exists(output, error)) {
        throw std::runtime_error(arguments.output + " exists already; --force replaces it");
    }
}

void Write(const std::filesystem::path& path, const std::string& text) {
    AtomicFile file(path, [](const std::string& message) { throw std::runtime_error(message); });
    file.Append(std::as_bytes(std::span(text)));
    file.Commit();
}

std::string ForShell(const std::string& text) {
    return '\'' + CLI::detail::find_and_replace(text, "'", "'\\''") + '\'';
}

/// Tells them; true when there are any.
bool TellUnusableLines(const DraftSources& sources, std::ostream& messages) {
    bool isAny = false;
    for (const auto& table : sources.Tables()) {
        for (const auto& fault : UnusableLines(table)) {
            fmt::print(messages, "qel cube draft: {}: {}\n", PathToUtf8(table.profile.file), fault);
            isAny = true;
        }
    }
    return isAny;
}

void Draft(const DraftArguments& arguments, CommandContext& context) {
    RefuseOutput(arguments);
    const DraftSources sources(ReadTables(arguments.files, context));
    const auto output = PathFromUtf8(arguments.output);
    Write(output, DraftDefinition(sources, std::filesystem::absolute(output).parent_path()));
    auto cube = output;
    const auto cubeFile = PathToUtf8(cube.replace_extension(".cub"));
    fmt::print(context.output, "{}: look it through, then\n", arguments.output);
    auto skipped = output;
    skipped.replace_filename(output.stem()) += "-skipped.csv";
    fmt::print(
        context.output, "  qel cube build {} --output {}{}\n", ForShell(arguments.output), ForShell(cubeFile),
        TellUnusableLines(sources, context.messages) ? " --skip-bad-lines " + ForShell(PathToUtf8(skipped))
                                                     : "");
    fmt::print(context.output, "  qel cube check {}\n", ForShell(cubeFile));
    fmt::print(context.output, "  qel eval {}\n", ForShell(DraftFormula(sources, cubeFile)));
}

} // namespace

void AddCubeDraftCommand(CLI::App& cube, CommandContext& context) {
    auto* command = cube.add_subcommand("draft", cubeDraftDescription);
    command->footer(cubeDraftFooter);
    auto arguments = std::make_shared<DraftArguments>();
    command->add_option("FILES", arguments->files, "The ledger and the tables that belong to it (CSV)")
        ->required();
    command->add_option("-o,--output", arguments->output, "The definition to write (JSON)")
        ->required()
        ->check([](const std::string& file) { return file.empty() ? "names no file" : ""; }, "FILE");
    command->add_flag("--force", arguments->force, "Replace a definition that exists");
    command->callback([arguments, &context] { Draft(*arguments, context); });
}

} // namespace qel
