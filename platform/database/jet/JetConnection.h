#pragma once

#include "platform/database/DatabaseConnection.h"
#include "platform/windows/DispatchObject.h"

namespace qel::windows {

/// The rows of a Jet database: an ADODB.Connection, and a recordset on the table's name for each operation.
class JetConnection : public DatabaseConnection {
public:
    /// Opens the connection.
    explicit JetConnection(const std::string& connectionString);

    std::vector<TableRow> ReadRows(const std::string& table) override;
    void ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) override;

private:
    DispatchObject OpenTable(const std::string& table) const;

    DispatchObject connection_;
};

} // namespace qel::windows
