#include "examples/ledger/reference/Sqlite.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <stdexcept>

namespace qel::ledger {
namespace {

void Check(int result, sqlite3* database, std::string_view what) {
    if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW) {
        throw std::runtime_error(fmt::format("SQLite: {} in {}", sqlite3_errmsg(database), what));
    }
}

} // namespace

SqlStatement::SqlStatement(sqlite3* database, const std::string& sql) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    Check(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr), database, sql);
    statement_.reset(statement);
}

void SqlStatement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

void SqlStatement::Bind(int parameter, std::string_view text) {
    Check(sqlite3_bind_text(statement_.get(), parameter, text.data(), static_cast<int>(text.size()),
                            SQLITE_TRANSIENT), // NOLINT(performance-no-int-to-ptr): SQLite's own macro
          database_, "bind");
}

void SqlStatement::Bind(int parameter, std::int64_t number) {
    Check(sqlite3_bind_int64(statement_.get(), parameter, number), database_, "bind");
}

bool SqlStatement::Step() {
    const int result = sqlite3_step(statement_.get());
    Check(result, database_, sqlite3_sql(statement_.get()));
    return result == SQLITE_ROW;
}

std::int64_t SqlStatement::Number(int column) const { return sqlite3_column_int64(statement_.get(), column); }

std::string SqlStatement::Text(int column) const {
    const auto* text = sqlite3_column_text(statement_.get(), column);
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

void SqlStatement::Reset() { Check(sqlite3_reset(statement_.get()), database_, "reset"); }

SqlDatabase::SqlDatabase(const std::string& file) {
    sqlite3* database = nullptr;
    const int result = sqlite3_open(file.c_str(), &database);
    database_.reset(database);
    Check(result, database, "open");
}

void SqlDatabase::Close::operator()(sqlite3* database) const { sqlite3_close(database); }

void SqlDatabase::Run(const std::string& sql) {
    Check(sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr), database_.get(), sql);
}

std::int64_t SqlDatabase::Number(const std::string& sql) {
    SqlStatement statement = Prepare(sql);
    statement.Step();
    return statement.Number(0);
}

std::string SqlDatabase::Text(const std::string& sql) {
    SqlStatement statement = Prepare(sql);
    statement.Step();
    return statement.Text(0);
}

} // namespace qel::ledger
