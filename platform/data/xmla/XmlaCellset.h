#pragma once

#include "platform/data/DataAccess.h"

#include <memory>

namespace qel {

/// Runs statements on a server, which answers with axes and cells.
[[nodiscard]] std::unique_ptr<Cellset> MakeXmlaCellset();

} // namespace qel
