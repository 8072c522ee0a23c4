#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/Cube.h"

#include <memory>

namespace qel {

/// A stored dimension of the cube, by its number. It, and everything reached through it, keeps the cube's
/// file open.
std::unique_ptr<Dimension> MakeLocalDimension(std::shared_ptr<const engine::Cube> cube,
                                              std::size_t dimension);

} // namespace qel
