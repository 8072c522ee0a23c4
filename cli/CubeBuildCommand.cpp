#include "cli/CubeBuildCommand.h"

#include "cli/CubeTotals.h"
#include "cli/FormulaReview.h"
#include "cli/Interruption.h"
#include "cli/MemorySize.h"
#include "cli/ProgressBar.h"
#include "qel/engine/BuildCube.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* cubeBuildDescription = "Make a cube file from CSV files or the tables of a database";

constexpr const char* cubeBuildFooter =
    R"(DEFINITION is a JSON file; docs/cube-definition.md describes it. The cube file is replaced in one step when the
build has succeeded, and stays as it was otherwise. A line that cannot be used stops the build, unless
--skip-bad-lines says where to put such lines. Lines are counted for every cube that reads them.

Warnings report input that is valid but may give wrong figures, such as a value under several parents. They are listed
at the end of the build. To confirm an intended one, name it in "accept" in the definition.

With --previous FILE the cube file also keeps the facts as they were read. The next build with it takes them, when the
definition is the same and each fact file begins with the bytes that were read before, and reads the lines behind them.
Otherwise it reads every line and says why. The cube file has the same bytes either way.

Examples:
  qel cube build examples/ledger/ledger.json --output demo.cub --skip-bad-lines rejected.csv
  qel cube build ledger.json --output ledger.cub --previous ledger.cub)";

struct BuildArguments {
    std::string definition, output, skippedLines, previous, memory = "1G";
    bool strict = false, force = false;
};

std::string Counted(std::size_t count, const char* what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void PrintWarnings(const std::vector<engine::BuildWarning>& warnings, std::ostream& messages) {
    for (const auto& warning : warnings) {
        fmt::print(messages, "warning ({}): {}\n", warning.kind, warning.text);
    }
    if (!warnings.empty()) {
        fmt::print(messages, "qel cube build: {}; \"accept\" in the definition confirms an intended one\n",
                   Counted(warnings.size(), "warning"));
    }
}

void Build(const BuildArguments& arguments, CommandContext& context) {
    engine::BuildOptions options;
    options.definition = PathFromUtf8(arguments.definition);
    options.output = PathFromSetting(arguments.output);
    if (!arguments.skippedLines.empty()) {
        options.skippedLines = PathFromUtf8(arguments.skippedLines);
    }
    options.strict = arguments.strict;
    options.force = arguments.force;
    if (!arguments.previous.empty()) {
        options.previous = PathFromSetting(arguments.previous);
    }
    options.memory = *ParseMemorySize(arguments.memory);
    options.review = [&](const auto& complete) { return ReviewForFormulas(complete, context.providers); };
    const auto start = std::chrono::steady_clock::now();
    engine::BuildTotals totals;
    {
        ProgressBar bar(context.terminal, context.terminalColumns);
        const Interruption interruption;
        options.progress = [&](const std::string& step, double share) {
            interruption.Check("interrupted; the cube file is as it was");
            bar.Show(step, share);
        };
        totals = engine::BuildCube(options);
    }
    const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    fmt::print(context.output, "{}: {} bytes in {:.1f} s\n", arguments.output, totals.bytesWritten, seconds);
    fmt::print(context.output, "lines read {}, kept {}, skipped {}\n", totals.linesRead, totals.linesKept,
               totals.linesSkipped);
    if (totals.linesTaken != 0) {
        fmt::print(context.output, "lines taken from {}: {}\n", arguments.previous, totals.linesTaken);
    }
    PrintTotals(*engine::CubeFile::Open(options.output), context.output);
    if (totals.distinctLinesSkipped == 1) {
        fmt::print(context.messages, "qel cube build: 1 line could not be used; it is in {}\n",
                   arguments.skippedLines);
    }
    if (totals.distinctLinesSkipped > 1) {
        fmt::print(context.messages, "qel cube build: {} lines could not be used; they are in {}\n",
                   totals.distinctLinesSkipped, arguments.skippedLines);
    }
    if (!totals.obstacle.empty()) {
        fmt::print(context.messages, "qel cube build: every line was read: {}\n", totals.obstacle);
    }
    PrintWarnings(totals.warnings, context.messages);
}

} // namespace

void AddCubeBuildCommand(CLI::App& cube, CommandContext& context) {
    auto* command = cube.add_subcommand("build", cubeBuildDescription);
    command->footer(cubeBuildFooter);
    auto arguments = std::make_shared<BuildArguments>();
    command->add_option("DEFINITION", arguments->definition, "The cube definition (JSON)")->required();
    command->add_option("-o,--output", arguments->output, "The cube file to write")
        ->required()
        ->check([](const std::string& file) { return file.empty() ? "names no file" : ""; }, "FILE");
    command->add_option("--skip-bad-lines", arguments->skippedLines,
                        "Write lines that cannot be used to this file and go on");
    command->add_option(
        "--previous", arguments->previous,
        "A cube file of the same definition, such as the one to write: read only the lines that "
        "were appended to the fact files since");
    command
        ->add_option(
            "--memory", arguments->memory,
            "Memory for facts and aggregates, such as 512M or 2G; what is more goes to a temporary file "
            "beside the cube file")
        ->check(
            [](const std::string& size) {
                return ParseMemorySize(size)
                           ? std::string()
                           : "expected a size of 64M or more, such as 512M or 2G, found \"" + size + "\"";
            },
            "SIZE")
        ->capture_default_str();
    command->add_flag("--strict", arguments->strict,
                      "Take warnings for errors: the cube file stays as it was");
    command->add_flag("--force", arguments->force, "Replace a cube file that is write-protected");
    command->callback([arguments, &context] { Build(*arguments, context); });
}

} // namespace qel
