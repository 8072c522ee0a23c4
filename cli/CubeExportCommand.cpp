#include "cli/CubeExportCommand.h"

#include "cli/Interruption.h"
#include "cli/ProgressBar.h"
#include "platform/data/embedded/CubeSource.h"
#include "qel/engine/ExportCubes.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel {

namespace {

constexpr const char* cubeExportDescription =
    "Write a cube file's schema, tables and rows, to fill a server with";

constexpr const char* cubeExportFooter =
    R"(Writes into DIR a Mondrian schema for each cube (CUBE.xml), tables.sql and rows.sql; docs/servers.md says
how a server is set up with them. With --shards, coordinator.sql, shard1.sql, shard2.sql … take the place of
tables.sql and rows.sql: each is for a PostgreSQL server of its own, and the shards have some months' facts each.

Example:
  qel cube export demo.cub --schema mondrian --sql demo-server)";

struct ExportArguments {
    std::string file, schema, folder;
    std::optional<std::size_t> shards;
};

void Export(const ExportArguments& arguments, CommandContext& context) {
    RequireCubeFile(arguments.file);
    const auto file = engine::CubeFile::Open(PathFromSetting(arguments.file));
    std::vector<std::filesystem::path> written;
    {
        ProgressBar bar(context.messages, context.terminalColumns);
        const Interruption interruption;
        const auto folder = PathFromUtf8(arguments.folder);
        const auto progress = [&](double share) {
            interruption.Check("interrupted; the rows were not written");
            bar.Show("writing rows", share);
        };
        written = arguments.shards ? engine::ExportShards(*file, folder, *arguments.shards, progress)
                                   : engine::ExportCubes(*file, folder, progress);
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
    command->add_option("--shards", arguments->shards, "The number of PostgreSQL servers to share the facts")
        ->check(CLI::Range(1, 100))
        ->option_text("N");
    command->callback([arguments, &context] { Export(*arguments, context); });
}

} // namespace qel
