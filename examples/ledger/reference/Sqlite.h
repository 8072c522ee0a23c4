#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace qel::ledger {

/// A prepared statement. Every operation raises std::runtime_error with SQLite's message.
class SqlStatement {
public:
    SqlStatement(sqlite3* database, const std::string& sql);

    /// Parameters are numbered from 1. Texts are copied.
    void Bind(int parameter, std::string_view text);
    void Bind(int parameter, std::int64_t number);
    /// Moves to the next row; false when there is none.
    bool Step();
    std::int64_t Number(int column) const;
    std::string Text(int column) const;
    /// Resets the statement; bindings stay.
    void Reset();

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// An SQLite database, in memory when the path is empty.
class SqlDatabase {
public:
    explicit SqlDatabase(const std::string& file = ":memory:");

    void Run(const std::string& sql);
    SqlStatement Prepare(const std::string& sql) { return {database_.get(), sql}; }
    /// The number in the first column of the first row.
    std::int64_t Number(const std::string& sql);
    std::string Text(const std::string& sql);

private:
    struct Close {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Close> database_;
};

} // namespace qel::ledger
