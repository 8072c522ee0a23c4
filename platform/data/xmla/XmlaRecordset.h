#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/Rowset.h"

#include <memory>
#include <optional>

namespace qel {

/// Runs statements on a server, which answers with a table; open at once when rows are given.
[[nodiscard]] std::unique_ptr<Recordset> MakeXmlaRecordset(std::optional<Rowset> rows = std::nullopt);

} // namespace qel
