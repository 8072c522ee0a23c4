#pragma once

#include "platform/value/AutomationError.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace qel {

/// The error number of all other failures.
inline constexpr auto unspecifiedError = static_cast<std::int32_t>(0x80004005);

/// A failure of the local database: "The local database 'FILE' FAULT."
[[nodiscard]] AutomationError DatabaseError(std::int32_t number, const std::filesystem::path& file,
                                            std::string_view fault);

/// Quotes a name for a statement.
std::string QuotedName(const std::string& name);

/// A prepared statement, freed with its owner.
struct FinishStatement {
    void operator()(sqlite3_stmt* statement) const;
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, FinishStatement>;

/// An open SQLite file. Every failure raises AutomationError with the file's name and SQLite's own text.
class SqliteFile {
public:
    /// The file must exist.
    explicit SqliteFile(std::filesystem::path path);

    const std::filesystem::path& Path() const { return path_; }

    /// Runs statements that give no rows.
    void Run(const std::string& statements);
    /// Undoes the open transaction, if there is one. Raises nothing.
    void RollBack() noexcept;
    SqliteStatement Prepare(const std::string& statement);
    /// True when there is a row, false at the end.
    bool Step(sqlite3_stmt* statement);
    /// Whether the last failure was another program's lock.
    bool IsLocked() const;

private:
    [[noreturn]] void Fail(int result, std::string_view what) const;

    struct Close {
        void operator()(sqlite3* database) const;
    };
    std::filesystem::path path_;
    std::unique_ptr<sqlite3, Close> database_;
};

} // namespace qel
