#include "platform/sqlite/SqliteDatabase.h"

#include "platform/AutomationError.h"
#include "platform/PathText.h"
#include "platform/sqlite/DatabaseFile.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace qel {

namespace {

namespace fs = std::filesystem;

/// The provider's number for a database that exists already.
constexpr auto databaseExists = static_cast<std::int32_t>(0x80040E17);
constexpr auto unspecifiedError = static_cast<std::int32_t>(0x80004005);
constexpr std::int32_t objectClosed = 3704;
constexpr const char* source = "OrmFuncQel4 SQLite database";
/// "Qel1": tells a file of this component from others; stored in the database's header.
constexpr int applicationId = 0x51656C31;
constexpr int busyMilliseconds = 2000;

AutomationError FileError(std::int32_t number, const fs::path& path, std::string_view fault) {
    return {number, fmt::format("The local database '{}' {}.", TextFromPath(path), fault), source};
}

fs::path DataSource(const std::string& connectionString) {
    constexpr std::string_view key = ";Data Source=";
    const auto at = connectionString.find(key);
    if (at == std::string::npos)
        throw AutomationError(unspecifiedError,
                              "The connection text names no data source: " + connectionString, source);
    return PathFromText(std::string_view(connectionString).substr(at + key.size()));
}

AutomationError ExistsAlready(const fs::path& path) {
    switch (IdentifyDatabaseFile(path)) {
    case DatabaseFileKind::Sqlite:
        return FileError(databaseExists, path, "already exists");
    case DatabaseFileKind::Jet:
        return FileError(
            databaseExists, path,
            "already exists and was made by Microsoft Jet, which is not to be had here; it is left as it "
            "is. Set MDBPath to another folder, or move the file away");
    default:
        return FileError(databaseExists, path, "already exists and is no database; it is left as it is");
    }
}

/// Makes the file, and takes care that nobody else has made it.
void MakeEmptyFile(const fs::path& path) {
    errno = 0;
    std::FILE* file =
        std::fopen(TextFromPath(path).c_str(), "wbx"); // NOLINT(cppcoreguidelines-owning-memory)
    const int failure = errno;
    if (file) {
        std::fclose(file); // NOLINT(cppcoreguidelines-owning-memory)
        return;
    }
    if (failure == EEXIST)
        throw ExistsAlready(path);
    throw FileError(unspecifiedError, path,
                    fmt::format("cannot be made ({})", std::generic_category().message(failure)));
}

std::string Quoted(const std::string& name) {
    std::string quoted = "\"";
    for (const char c : name)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + '"';
}

std::string ColumnText(const TableColumn& column) {
    std::string type = column.type == ColumnType::Date ? "DATE" : "TEXT";
    if (column.type == ColumnType::Text && column.definedSize > 0)
        type = fmt::format("VARCHAR({})", column.definedSize);
    const bool isNullable = (column.attributes & columnNullable) != 0;
    return Quoted(column.name) + " " + type + (isNullable ? "" : " NOT NULL");
}

class SqliteCatalog : public DatabaseCatalog {
public:
    void Create(const std::string& connectionString) override {
        path_ = DataSource(connectionString);
        MakeEmptyFile(path_);
        sqlite3* opened = nullptr;
        const int result =
            sqlite3_open_v2(TextFromPath(path_).c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
        database_.reset(opened);
        if (result != SQLITE_OK)
            throw FileError(unspecifiedError, path_,
                            fmt::format("cannot be opened ({})", sqlite3_errmsg(opened)));
        sqlite3_busy_timeout(opened, busyMilliseconds);
        // Writes the header, so that the file is known for what it is before it has a table.
        Run(fmt::format("PRAGMA application_id = {}", applicationId));
    }

    void AppendTable(const TableDefinition& table) override {
        if (!database_)
            throw AutomationError(objectClosed, "Operation is not allowed when the object is closed.",
                                  source);
        std::string columns;
        for (const auto& column : table.columns)
            columns += (columns.empty() ? "" : ", ") + ColumnText(column);
        Run("CREATE TABLE " + Quoted(table.name) + " (" + columns + ")");
    }

private:
    void Run(const std::string& statement) {
        if (sqlite3_exec(database_.get(), statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            throw FileError(unspecifiedError, path_,
                            fmt::format("cannot be written ({})", sqlite3_errmsg(database_.get())));
    }

    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    fs::path path_;
    std::unique_ptr<sqlite3, Close> database_;
};

} // namespace

std::string SqliteDatabase::Name() const { return std::string("SQLite ") + sqlite3_libversion(); }

std::unique_ptr<DatabaseCatalog> SqliteDatabase::NewCatalog() { return std::make_unique<SqliteCatalog>(); }

} // namespace qel
