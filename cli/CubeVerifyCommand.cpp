#include "cli/CubeVerifyCommand.h"

#include "cli/ProgressBar.h"
#include "platform/data/embedded/CubeSource.h"
#include "qel/engine/CheckCalculations.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* cubeVerifyDescription = "Check every checksum and invariant of a cube file";

void VerifyCalculations(const std::string& file, const engine::CubeFile& cubes) {
    for (const auto& cube : cubes.Cubes()) {
        if (const auto fault = engine::FindCalculationFault(cube)) {
            throw engine::EngineError(engine::ErrorKind::DamagedFile,
                                      fmt::format("{}: cube {}: {}", file, cube.Name(), fault->text));
        }
    }
}

void Verify(const std::string& file, CommandContext& context) {
    RequireCubeFile(file);
    const auto cubeFile = engine::CubeFile::Open(PathFromSetting(file));
    {
        ProgressBar bar(context.terminal, context.terminalColumns);
        cubeFile->Verify([&](double share) { bar.Show("checking", share); });
    }
    VerifyCalculations(file, *cubeFile);
    fmt::print(context.output, "{}: OK\n", file);
}

} // namespace

void AddCubeVerifyCommand(CLI::App& cube, CommandContext& context) {
    auto* command = cube.add_subcommand("verify", cubeVerifyDescription);
    command->footer("Prints FILE: OK, or tells the first fault and exits with status 1.\n\n"
                    "Example:\n  qel cube verify demo.cub");
    auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "The cube file")->required();
    command->callback([file, &context] { Verify(*file, context); });
}

} // namespace qel
