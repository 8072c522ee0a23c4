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
    std::optional<SqliteFile> file_;
};

} // namespace qel
