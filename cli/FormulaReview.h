#pragma once

#include "platform/data/Providers.h"
#include "qel/engine/BuildCube.h"

#include <filesystem>
#include <vector>

namespace qel {

/// What formulas over a cube file would read wrongly. Cubes without [ActX] or [Date], which no formula can
/// read, have no warnings. Raises std::runtime_error for a cube whose days would be read as months.
std::vector<engine::BuildWarning> ReviewForFormulas(const std::filesystem::path& cubeFile,
                                                    const Providers& providers);

} // namespace qel
