#include "platform/database/sqlite/SqliteFile.h"

#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace qel {

namespace {

constexpr int busyMilliseconds = 2000;

} // namespace

AutomationError DatabaseError(std::int32_t number, const std::filesystem::path& file,
                              std::string_view fault) {
    return {number, fmt::format("The local database '{}' {}.", PathToUtf8(file), fault),
            "OrmFuncQel4 SQLite database"};
}

std::string QuotedName(const std::string& name) {
    std::string quoted = "\"";
    for (const char c : name) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

void FinishStatement::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

void SqliteFile::Close::operator()(sqlite3* database) const { sqlite3_close(database); }

SqliteFile::SqliteFile(std::filesystem::path path) : path_(std::move(path)) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(PathToUtf8(path_).c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    database_.reset(opened);
    if (result != SQLITE_OK) {
        Fail(result, "cannot be opened");
    }
    sqlite3_busy_timeout(opened, busyMilliseconds);
}

void SqliteFile::Run(const std::string& statements) {
    const int result = sqlite3_exec(database_.get(), statements.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Fail(result, "cannot be written");
    }
}

void SqliteFile::RollBack() noexcept { sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr); }

SqliteStatement SqliteFile::Prepare(const std::string& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v2(database_.get(), statement.c_str(),
                                          static_cast<int>(statement.size()), &prepared, nullptr);
    if (result != SQLITE_OK) {
        Fail(result, "cannot be used");
    }
    return SqliteStatement(prepared);
}

bool SqliteFile::Step(sqlite3_stmt* statement) {
    const int result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        Fail(result, sqlite3_stmt_readonly(statement) != 0 ? "cannot be read" : "cannot be written");
    }
    return result == SQLITE_ROW;
}

bool SqliteFile::IsLocked() const { return sqlite3_errcode(database_.get()) == SQLITE_BUSY; }

void SqliteFile::Fail(int result, std::string_view what) const {
    const char* reason = database_ ? sqlite3_errmsg(database_.get()) : sqlite3_errstr(result);
    throw DatabaseError(unspecifiedError, path_, fmt::format("{} ({})", what, reason));
}

} // namespace qel
