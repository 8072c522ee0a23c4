#pragma once

#include "qel/engine/CubeFile.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

namespace qel::engine {

/// Writes into the folder, creating it when missing: a Mondrian 3 schema per cube, named after it
/// ("LedgerFNC.xml"), and for all cubes together "tables.sql" and "rows.sql", which create and fill the
/// tables in any SQL database. Replaces files of these names, each when complete. `progress` is called with
/// the share done, 0 to 1. Returns the files written. Raises EngineError naming the file.
std::vector<std::filesystem::path> ExportCubes(const CubeFile& file, const std::filesystem::path& folder,
                                               const std::function<void(double)>& progress);

/// The same for a PostgreSQL server, the coordinator, over others that share the facts by month: the schemas,
/// "shard1.sql" and so on for the shards, and "coordinator.sql". Raises EngineError (InvalidExpression) for a
/// cube without a calendar of months.
std::vector<std::filesystem::path> ExportShards(const CubeFile& file, const std::filesystem::path& folder,
                                                std::size_t shards,
                                                const std::function<void(double)>& progress);

} // namespace qel::engine
