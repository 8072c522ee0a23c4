#pragma once

#include "examples/ledger/reference/Sqlite.h"

#include <filesystem>

namespace qel::ledger {

/// Reads a ledger's CSV files into an SQLite database: a table for each file, named as the file, columns
/// named as in its header, texts as they stand. In `ledger` the amount is in cents and the quantity in
/// thousandths. Raises std::runtime_error naming the file when one cannot be read.
void LoadLedger(const std::filesystem::path& folder, SqlDatabase& database);

} // namespace qel::ledger
