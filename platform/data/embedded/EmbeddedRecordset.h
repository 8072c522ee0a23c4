#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/Rowset.h"

#include <memory>
#include <optional>

namespace qel {

/// Runs statements in the embedded engine and flattens their answers; open at once when rows are given.
[[nodiscard]] std::unique_ptr<Recordset> MakeEmbeddedRecordset(std::optional<Rowset> rows = std::nullopt);

} // namespace qel
