#include "platform/database/sqlite/SqliteCatalog.h"

#include "platform/database/DatabaseFile.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace qel {

namespace {

namespace fs = std::filesystem;

/// The provider's number for a database that exists already.
constexpr auto databaseExists = static_cast<std::int32_t>(0x80040E17);
constexpr std::int32_t objectClosed = 3704;
/// "Qel1": the application id in the database's header, which identifies this component's files.
constexpr int applicationId = 0x51656C31;

AutomationError ExistsAlready(const fs::path& path) {
    switch (IdentifyDatabaseFile(path)) {
    case DatabaseFileKind::Sqlite:
        return DatabaseError(databaseExists, path, "already exists");
    case DatabaseFileKind::Jet:
        return DatabaseError(
            databaseExists, path,
            "already exists and was made by Microsoft Jet, which this machine lacks; it is left unchanged. "
            "Set MDBPath to another folder, or move the file away");
    default:
        return DatabaseError(databaseExists, path,
                             "already exists and is not a database; it is left unchanged");
    }
}

/// Creates an empty file, failing when it exists. Returns 0 or the system's error number.
int MakeNewFile(const fs::path& path) {
    errno = 0;
#ifdef _WIN32 // whose fopen has no mode for it
    const int file = ::_wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY, _S_IREAD | _S_IWRITE);
    return file < 0 ? errno : ::_close(file);
#else
    const int file = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    return file < 0 ? errno : ::close(file);
#endif
}

void MakeDatabaseFile(const fs::path& path) {
    const int failure = MakeNewFile(path);
    if (failure == 0) {
        return;
    }
    if (failure == EEXIST) {
        throw ExistsAlready(path);
    }
    throw DatabaseError(unspecifiedError, path,
                        fmt::format("cannot be created ({})", std::generic_category().message(failure)));
}

std::string ColumnText(const TableColumn& column) {
    std::string type = column.type == ColumnType::Date ? "DATE" : "TEXT";
    if (column.type == ColumnType::Text && column.definedSize > 0) {
        type = fmt::format("VARCHAR({})", column.definedSize);
    }
    const bool isNullable = (column.attributes & columnNullable) != 0;
    return QuotedName(column.name) + " " + type + (isNullable ? "" : " NOT NULL");
}

} // namespace

void SqliteCatalog::Create(const std::string& connectionString) {
    const fs::path path = DatabaseFileOf(connectionString);
    MakeDatabaseFile(path);
    try {
        file_.emplace(path);
        // Writes the header, so that the file is recognised before it has a table.
        file_->Run(fmt::format("PRAGMA application_id = {}", applicationId));
    } catch (const AutomationError&) {
        TakeBack(path);
        throw;
    }
}

void SqliteCatalog::AppendTable(const TableDefinition& table) {
    if (!file_) {
        throw AutomationError(objectClosed, "Operation is not allowed when the object is closed.");
    }
    std::string columns;
    for (const auto& column : table.columns) {
        columns += (columns.empty() ? "" : ", ") + ColumnText(column);
    }
    try {
        file_->Run("CREATE TABLE " + QuotedName(table.name) + " (" + columns + ")");
    } catch (const AutomationError&) {
        if (!file_->IsLocked()) { // a full disk, for example
            const fs::path path = file_->Path();
            TakeBack(path);
        }
        throw;
    }
}

void SqliteCatalog::TakeBack(const fs::path& path) {
    file_.reset();
    std::error_code ignored;
    fs::remove(path, ignored);
}

} // namespace qel
