#pragma once

#include "bench/SqlitePeer.h"

#include <filesystem>
#include <memory>
#include <string>

namespace qel::bench {

/// The same cells computed by DuckDB, in memory and single-threaded, from statements with literal values. The
/// library is loaded on construction; without it the benchmark skips DuckDB.
class DuckDbPeer {
public:
    /// Copies the facts of the SQLite database, sorted by account, OBS leaf and day. Raises
    /// std::runtime_error when the library cannot be loaded, or with DuckDB's message.
    DuckDbPeer(const std::filesystem::path& library, SqlitePeer& source);
    ~DuckDbPeer();
    DuckDbPeer(const DuckDbPeer&) = delete;
    DuckDbPeer& operator=(const DuckDbPeer&) = delete;

    double Run(const SqliteCell& cell);
    std::string Version() const;

private:
    class Library;

    void Copy(SqlitePeer& source, const std::string& table, const std::string& query, int columns);

    std::unique_ptr<Library> library_;
};

} // namespace qel::bench
