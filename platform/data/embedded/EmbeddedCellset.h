#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/Cellset.h"

#include <memory>

namespace qel {

/// Runs statements in the embedded engine.
[[nodiscard]] std::unique_ptr<Cellset> MakeEmbeddedCellset();

} // namespace qel
