#include "platform/database/sqlite/SqliteDatabase.h"

#include "platform/database/DatabaseFile.h"
#include "platform/database/sqlite/SqliteCatalog.h"
#include "platform/database/sqlite/SqliteRows.h"

#include <sqlite3.h>

namespace qel {

namespace {

/// Why the file cannot be opened, or null.
const char* FaultOf(DatabaseFileKind kind) {
    switch (kind) {
    case DatabaseFileKind::Sqlite:
        return nullptr;
    case DatabaseFileKind::Missing:
        return "does not exist";
    case DatabaseFileKind::Unreadable:
        return "cannot be read";
    case DatabaseFileKind::Jet:
        return "was made by Microsoft Jet, which this machine lacks; it is left unchanged";
    default:
        return "is not a database; it is left unchanged";
    }
}

} // namespace

std::string SqliteDatabase::Name() const { return std::string("SQLite ") + sqlite3_libversion(); }

std::unique_ptr<DatabaseCatalog> SqliteDatabase::NewCatalog() { return std::make_unique<SqliteCatalog>(); }

std::unique_ptr<DatabaseConnection> SqliteDatabase::Open(const std::string& connectionString) {
    const auto path = DatabaseFileOf(connectionString);
    if (const char* fault = FaultOf(IdentifyDatabaseFile(path))) {
        throw DatabaseError(unspecifiedError, path, fault);
    }
    return std::make_unique<SqliteRows>(path);
}

} // namespace qel
