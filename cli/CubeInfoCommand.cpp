#include "cli/CubeInfoCommand.h"

#include "cli/CubeTotals.h"
#include "cli/LevelPath.h"
#include "cli/TextTable.h"
#include "platform/data/embedded/CubeSource.h"
#include "qel/engine/CubeFile.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace qel {

namespace {

constexpr const char* cubeInfoDescription = "Show the cubes, dimensions, levels and measures of a cube file";

constexpr const char* cubeInfoFooter = R"(Examples:
  qel cube info demo.cub
  qel cube info demo.cub --totals
  qel cube info demo.cub --members '[OBS].[Level2]' --cube LedgerFNC
  qel cube info demo.cub --members SuperSum1 --cube LedgerHebrewFNC)";

const char* NameOf(engine::AggregateFunction function) {
    return function == engine::AggregateFunction::Sum ? "sum" : "count";
}

/// The formula without the line breaks that it may have.
std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

void PrintLevels(const engine::Cube& cube, std::ostream& output) {
    TextTable table{2, {{"  level", "depth", "members"}}};
    table.leftColumns = 1;
    for (const auto& dimension : cube.Dimensions()) {
        for (const auto index : dimension.hierarchies) {
            for (const auto& level : cube.Hierarchies()[index].Levels()) {
                table.lines.push_back({"  " + FullName({&cube, &cube.Hierarchies()[index], &level}),
                                       fmt::format("{}", level.depth),
                                       fmt::format("{}", level.members.Count())});
            }
        }
    }
    PrintTable(table, output);
}

void PrintMeasures(const engine::Cube& cube, std::ostream& output) {
    TextTable table{2, {{"  measure", "aggregate", "decimals"}}};
    const auto measures = cube.Measures();
    for (std::size_t i = 0; i < measures.size(); ++i) {
        table.lines.push_back({"  " + measures[i].name + (i == cube.DefaultMeasure() ? " (default)" : ""),
                               NameOf(measures[i].function), fmt::format("{}", measures[i].decimals)});
    }
    PrintTable(table, output);
}

void PrintCalculations(const engine::Calculations& calculations, std::ostream& output) {
    if (!calculations.members.empty()) {
        TextTable table{4, {{"  calculated member", "formula", "format", "solve order"}}};
        table.leftColumns = 3;
        for (const auto& member : calculations.members) {
            table.lines.push_back({"  " + member.name, OneLine(member.formula), member.format,
                                   fmt::format("{}", member.solveOrder)});
        }
        PrintTable(table, output);
    }
    if (!calculations.sets.empty()) {
        TextTable table{2, {{"  named set", "formula"}}};
        for (const auto& set : calculations.sets) {
            table.lines.push_back({"  " + set.name, OneLine(set.formula)});
        }
        PrintTable(table, output);
    }
}

void PrintSortOrders(const engine::Cube& cube, std::ostream& output) {
    for (const auto& columns : cube.SortOrders()) {
        fmt::print(output, "  sorted by {}\n", fmt::join(columns, ", "));
    }
}

void PrintDetails(const engine::Cube& cube, std::ostream& output) {
    std::vector<std::string> names;
    for (const engine::Detail& detail : cube.Details()) {
        names.push_back(detail.caption == detail.name
                            ? detail.name
                            : fmt::format("{} \"{}\"", detail.name, detail.caption));
    }
    if (cube.KeepsDetails()) {
        fmt::print(output, "  details of each line: {}\n", fmt::join(names, ", "));
    }
}

void PrintCube(const engine::Cube& cube, std::ostream& output) {
    fmt::print(output, "\ncube {}{}\n", cube.Name(),
               cube.Caption() == cube.Name() ? "" : fmt::format(" \"{}\"", cube.Caption()));
    fmt::print(output, "  {} facts, {} dimensions, {} measures\n", cube.FactCount(), cube.Dimensions().size(),
               cube.Measures().size());
    PrintLevels(cube, output);
    PrintMeasures(cube, output);
    PrintCalculations(cube.GetCalculations(), output);
    PrintDetails(cube, output);
    PrintSortOrders(cube, output);
}

void PrintMembers(const LevelPlace& place, std::ostream& output) {
    constexpr std::size_t textColumns = 4;
    TextTable table{textColumns, {{"name", "caption", "key", "unique name"}}};
    const auto& hierarchy = *place.hierarchy;
    for (auto member = place.level->members.first; member < place.level->members.last; ++member) {
        table.lines.push_back({std::string(hierarchy.MemberName(member)),
                               std::string(hierarchy.MemberCaption(member)),
                               std::string(hierarchy.MemberKey(member)), hierarchy.MemberUniqueName(member)});
    }
    PrintTable(table, output);
}

struct InfoArguments {
    std::string file, level, cube;
    bool totals = false;
};

void PrintInfo(const InfoArguments& arguments, CommandContext& context) {
    RequireCubeFile(arguments.file);
    const auto file = engine::CubeFile::Open(PathFromSetting(arguments.file));
    if (!arguments.level.empty()) {
        PrintMembers(FindLevel(*file, arguments.level, arguments.cube), context.output);
        return;
    }
    if (arguments.totals) {
        PrintTotals(*file, context.output);
        return;
    }
    fmt::print(context.output, "{}: {} bytes, {} cube{}\n", arguments.file, file->Size(),
               file->Cubes().size(), file->Cubes().size() == 1 ? "" : "s");
    for (const auto& cube : file->Cubes()) {
        PrintCube(cube, context.output);
    }
}

} // namespace

void AddCubeInfoCommand(CLI::App& cube, CommandContext& context) {
    auto* command = cube.add_subcommand("info", cubeInfoDescription);
    command->footer(cubeInfoFooter);
    auto arguments = std::make_shared<InfoArguments>();
    command->add_option("FILE", arguments->file, "The cube file")->required();
    auto* const members = command->add_option(
        "--members", arguments->level, "List the members of this level: name, caption, key, unique name");
    command->add_option("--cube", arguments->cube, "The cube of that level, when several have it")
        ->needs(members);
    command
        ->add_flag("--totals", arguments->totals,
                   "Show what each cube took from each file: lines, and every measure's total")
        ->excludes(members);
    command->callback([arguments, &context] { PrintInfo(*arguments, context); });
}

} // namespace qel
