#pragma once

#include "platform/data/ado/AdoConnection.h"

namespace qel::windows {

/// The data-access objects of the machine: ADODB.Connection, ADODB.Recordset, ADOMD.Catalog and
/// ADOMD.Cellset, bound when they are used, so that a machine without them fails only when a data source
/// needs them. The objects belong to the thread that made them.
class AdoDataAccess : public DataAccess {
public:
    /// `check` runs before a connection is opened. A catalog is given texts of open connections only.
    explicit AdoDataAccess(OpeningCheck check = {}) : check_(std::move(check)) {}

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    OpeningCheck check_;
};

} // namespace qel::windows
