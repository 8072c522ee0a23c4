#pragma once

#include "platform/database/DatabaseCatalog.h"
#include "platform/database/sqlite/SqliteFile.h"

#include <optional>

namespace qel {

/// Makes a database file and its tables.
class SqliteCatalog : public DatabaseCatalog {
public:
    void Create(const std::string& connectionString) override;
    void AppendTable(const TableDefinition& table) override;

private:
    /// Removes the file, which lacks a table: left there, it would prevent the next creation.
    void TakeBack(const std::filesystem::path& path);

    std::optional<SqliteFile> file_;
};

} // namespace qel
