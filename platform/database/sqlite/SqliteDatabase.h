#pragma once

#include "platform/database/DatabaseCatalog.h"

namespace qel {

/// Keeps the local database with SQLite, in a file of the same name, where Jet is not to be had.
class SqliteDatabase : public DatabaseEngine {
public:
    std::string Name() const override;
    std::unique_ptr<DatabaseCatalog> NewCatalog() override;
    std::unique_ptr<DatabaseConnection> Open(const std::string& connectionString) override;
};

} // namespace qel
