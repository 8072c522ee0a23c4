#include "cli/FormulaReview.h"

#include "cube/CubeConnection.h"
#include "cube/CubeDates.h"
#include "platform/value/AutomationError.h"
#include "qel/engine/CubeFile.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <stdexcept>

namespace qel {

namespace {

constexpr const char* dateMembers = "dateMembers";

/// Whether formulas can read the cube at all.
bool IsForFormulas(const engine::Cube& cube) {
    constexpr std::size_t fewestObsLevels = 3;
    const auto obs = cube.FindDimension("ActX");
    if (!obs || !cube.FindDimension("Date")) {
        return false;
    }
    const auto& hierarchies = cube.Dimensions()[*obs].hierarchies;
    return cube.Hierarchies()[hierarchies.front()].Levels().size() >= fewestObsLevels;
}

void ReviewCube(const std::string& file, const std::string& cubeName, const Providers& providers,
                std::vector<engine::BuildWarning>& warnings) {
    const auto own = providers.Connect(ModSetCube::ComposeConnectionText(file, cubeName));
    const auto catalog = own.provider.CreateCatalog();
    catalog->SetActiveConnection(own.connection);
    const auto date = catalog->CubeAt(0)->DimensionNamed("Date")->HierarchyAt(0);
    constexpr std::int32_t fewestLevels = 3; // all, years and months
    if (date->LevelCount() < fewestLevels) {
        return;
    }
    if (ModSetCube::HasDaysForMonths(*date)) {
        throw std::runtime_error(
            fmt::format("cube {}: formulas would read the days of [Date] as months, because it "
                        "has four levels; set \"quarters\": true in its calendar",
                        cubeName));
    }
    for (const auto& fault : ModSetCube::FindDateFaults(*date)) {
        warnings.push_back(
            {dateMembers, cubeName, "Date",
             fmt::format("cube {}, [Date]: {}; formulas over the cube show 0", cubeName, fault)});
    }
}

} // namespace

std::vector<engine::BuildWarning> ReviewForFormulas(const std::filesystem::path& cubeFile,
                                                    const Providers& providers) {
    std::vector<engine::BuildWarning> warnings;
    const std::string file = PathToUtf8(cubeFile);
    const auto opened = engine::CubeFile::Open(cubeFile);
    for (const auto& cube : opened->Cubes()) {
        if (!IsForFormulas(cube)) {
            continue;
        }
        if (file.find(';') != std::string::npos) {
            warnings.push_back(
                {"path", cube.Name(), "",
                 fmt::format("cube {}: formulas cannot name a file with ';' in its path", cube.Name())});
            continue;
        }
        ReviewCube(file, cube.Name(), providers, warnings);
    }
    return warnings;
}

} // namespace qel
