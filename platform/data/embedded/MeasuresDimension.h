#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/Cube.h"

#include <memory>
#include <string_view>

namespace qel {

/// True for "Measures" in any letter case.
[[nodiscard]] bool IsMeasuresName(std::string_view name);

/// The dimension [Measures]: one hierarchy with one level, whose members are the cube's measures.
[[nodiscard]] std::unique_ptr<Dimension> MakeMeasuresDimension(std::shared_ptr<const engine::Cube> cube);

} // namespace qel
