#pragma once

#include "platform/database/DatabaseCatalog.h"

namespace qel {

/// The local database in SQLite, in a file of the same name, on machines without Jet.
class SqliteDatabase : public DatabaseEngine {
public:
    std::string Name() const override;
    std::unique_ptr<DatabaseCatalog> NewCatalog() override;
    std::unique_ptr<DatabaseConnection> Open(const std::string& connectionString) override;
};

} // namespace qel
