#include "cli/CubeCheckCommand.h"

#include "cli/CubeCheck.h"
#include "platform/data/embedded/CubeSource.h"
#include "qel/engine/CubeFile.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>

namespace qel {

namespace {

constexpr const char* cubeCheckDescription = "Check whether formulas can read the cubes of a file";

constexpr const char* cubeCheckFooter =
    R"(Checks that each cube, or the one that is named, has every dimension, hierarchy and level that the formulas name
and that its dates are read as periods, then evaluates one formula. It lists what is missing and which arguments
fail without it; the exit status is then 1.

Example:
  qel cube check demo.cub LedgerFNC)";

void Check(const std::string& file, const std::string& cubeName, CommandContext& context) {
    RequireCubeFile(file);
    const auto opened = engine::CubeFile::Open(PathFromUtf8(file));
    CubeCheck check(file, context);
    const auto print = [&](const engine::Cube& cube) {
        const auto amount = cube.FindMeasure("Amount").value_or(cube.DefaultMeasure());
        check.Print(cube.Name(), cube.Measures()[amount].name);
    };
    if (!cubeName.empty()) {
        print(*opened->FindCube(cubeName));
        return;
    }
    for (const auto& cube : opened->Cubes()) {
        print(cube);
    }
}

} // namespace

void AddCubeCheckCommand(CLI::App& cube, CommandContext& context) {
    auto* command = cube.add_subcommand("check", cubeCheckDescription);
    command->footer(cubeCheckFooter);
    struct Arguments {
        std::string file, cube;
    };
    auto arguments = std::make_shared<Arguments>();
    command->add_option("FILE", arguments->file, "The cube file")->required();
    command->add_option("CUBE", arguments->cube, "The cube to check; all if absent");
    command->callback([arguments, &context] { Check(arguments->file, arguments->cube, context); });
}

} // namespace qel
