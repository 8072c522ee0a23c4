#pragma once

#include "platform/database/DatabaseConnection.h"
#include "platform/database/sqlite/SqliteFile.h"

namespace qel {

/// The rows of an open database. Dates are stored as "2020-03-31", followed by " 14:30:00" when they have a
/// time of day.
class SqliteRows : public DatabaseConnection {
public:
    /// The file must exist.
    explicit SqliteRows(std::filesystem::path path) : file_(std::move(path)) {}

    std::vector<TableRow> ReadRows(const std::string& table) override;
    void ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) override;

private:
    TableRow CurrentRow(sqlite3_stmt* statement) const;
    AutomationDate DateOf(const std::string& text, const char* column) const;
    void AddRow(const std::string& table, const TableRow& row);

    SqliteFile file_;
};

} // namespace qel
