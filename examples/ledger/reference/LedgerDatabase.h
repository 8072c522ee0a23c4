#pragma once

#include "examples/ledger/reference/Sqlite.h"

#include <cstdint>
#include <filesystem>

namespace qel::ledger {

/// Loads a ledger's CSV files into an SQLite database: one table per file, named after it, with the columns
/// of its header and texts unchanged. In `ledger` the amount is in cents and the quantity in thousandths.
/// Of the ledger itself, it loads the first line and then one of each `oneIn`. Raises std::runtime_error
/// naming a file that cannot be read.
void LoadLedger(const std::filesystem::path& folder, SqlDatabase& database, std::uint64_t oneIn = 1);

} // namespace qel::ledger
