#pragma once

#include "bench/SqlitePeer.h"

#include <filesystem>
#include <memory>
#include <string>

namespace qel::bench {

/// The same cells through DuckDB, in memory and with one thread, from the texts of statements with their
/// values in them. Its library is loaded when one is used; the benchmark does without it otherwise.
class DuckDbPeer {
public:
    /// Copies the facts of the SQLite database, sorted by account, OBS leaf and day. Raises
    /// std::runtime_error for a library that cannot be loaded, and what DuckDB says.
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
