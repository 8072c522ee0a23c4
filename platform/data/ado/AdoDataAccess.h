#pragma once

#include "platform/data/DataAccess.h"

namespace qel::windows {

/// The data-access objects of the machine: ADODB.Connection, ADODB.Recordset, ADOMD.Catalog and
/// ADOMD.Cellset, bound when they are used, so that a machine without them fails only when a data source
/// needs them. The objects belong to the thread that made them.
class AdoDataAccess : public DataAccess {
public:
    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;
};

} // namespace qel::windows
