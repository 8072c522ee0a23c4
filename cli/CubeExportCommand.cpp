#include "cli/CubeExportCommand.h"

#include "cli/Interruption.h"
#include "cli/ProgressBar.h"
#include "platform/data/embedded/CubeSource.h"
#include "qel/engine/ExportCubes.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* cubeExportDescription =
    "Write a cube file's schema, tables and rows, to fill a server with";

constexpr const char* cubeExportFooter =
    R"(Writes into DIR a Mondrian schema for each cube (CUBE.xml), tables.sql and rows.sql; docs/servers.md says
how a server is set up with them.

Example:
  qel cube export demo.cub --schema mondrian --sql demo-server)";

struct ExportArguments {
    std::string file, schema, folder;
};

void Export(const ExportArguments& arguments, CommandContext& context) {
    RequireCubeFile(arguments.file);
    const auto file = engine::CubeFile::Open(PathFromSetting(arguments.file));
    std::vector<std::filesystem::path> written;
    {
        ProgressBar bar(context.messages, context.terminalColumns);
        const Interruption interruption;
        written = engine::ExportCubes(*file, PathFromUtf8(arguments.folder), [&](double share) {
            interruption.Check("interrupted; the rows were not written");
            bar.Show("writing rows", share);
        });
    }
    for (const auto& path : written) {
        fmt::print(context.output, "{}: {} bytes\n", PathToUtf8(path), std::filesystem::file_size(path));
    }
}

} // namespace

void AddCubeExportCommand(CLI::App& cube, CommandContext& context) {
    auto* command = cube.add_subcommand("export", cubeExportDescription);
    command->footer(cubeExportFooter);
    auto arguments = std::make_shared<ExportArguments>();
    command->add_option("FILE", arguments->file, "The cube file")->required();
    command->add_option("--schema", arguments->schema, "The kind of server that the schema is for")
        ->required()
        ->check(CLI::IsMember({"mondrian"}));
    command->add_option("--sql", arguments->folder, "The folder to write into; made when it is missing")
        ->required()
        ->option_text("DIR REQUIRED");
    command->callback([arguments, &context] { Export(*arguments, context); });
}

} // namespace qel
