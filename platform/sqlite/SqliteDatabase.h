#pragma once

#include "platform/DatabaseCatalog.h"

namespace qel {

/// Makes the local database with SQLite, in a file of the same name, where Jet is not to be had.
class SqliteDatabase : public DatabaseEngine {
public:
    std::string Name() const override;
    std::unique_ptr<DatabaseCatalog> NewCatalog() override;
};

} // namespace qel
