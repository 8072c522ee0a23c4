#pragma once

#include "platform/DatabaseCatalog.h"
#include "platform/sqlite/SqliteFile.h"

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
