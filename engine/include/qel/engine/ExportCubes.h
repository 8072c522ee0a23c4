#pragma once

#include "qel/engine/CubeFile.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace qel::engine {

/// Writes into the folder, which is made when it is missing: for every cube a Mondrian 3 schema named as the
/// cube ("LedgerFNC.xml"), and for all of them together "tables.sql" and "rows.sql", which make and fill the
/// tables in any SQL database. Files of those names are replaced, each when it is complete. `progress` (may
/// be empty) is called with a share from 0 to 1. Returns the files written. Raises EngineError naming the
/// file.
std::vector<std::filesystem::path> ExportCubes(const CubeFile& file, const std::filesystem::path& folder,
                                               const std::function<void(double)>& progress);

} // namespace qel::engine
