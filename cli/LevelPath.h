#pragma once

#include "qel/engine/CubeFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// A level of a cube.
struct LevelPlace {
    const engine::Cube* cube = nullptr;
    const engine::Hierarchy* hierarchy = nullptr;
    const engine::Level* level = nullptr;
};

/// "[Dimension].[Hierarchy].[Level]".
std::string FullName(const LevelPlace& place);

/// The level that a person named: `[OBS].[Level2]`, `[Accounts].[AccountCodes].[AccountCode]`, or `Level2`
/// when only one level is called so; "]" is doubled inside brackets, any letter case. Raises
/// std::invalid_argument when there is none, or more than one, naming them. A cube's name that is not empty
/// says which cube's level is meant.
LevelPlace FindLevel(const engine::CubeFile& file, std::string_view path, std::string_view cubeName);

} // namespace qel
