#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/Cube.h"

#include <memory>

namespace qel {

/// A stored dimension of the cube, by its index. It and its hierarchies, levels and members keep the cube's
/// file open.
[[nodiscard]] std::unique_ptr<Dimension> MakeLocalDimension(std::shared_ptr<const engine::Cube> cube,
                                                            std::size_t dimension);

} // namespace qel
