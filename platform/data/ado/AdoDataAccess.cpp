#include "platform/data/ado/AdoDataAccess.h"

#include "platform/data/ado/AdoCatalog.h"
#include "platform/data/ado/AdoCellset.h"
#include "platform/data/ado/AdoRecordset.h"

namespace qel::windows {

std::shared_ptr<Connection> AdoDataAccess::CreateConnection() {
    return std::make_shared<AdoConnection>(check_);
}

std::unique_ptr<Catalog> AdoDataAccess::CreateCatalog() { return std::make_unique<AdoCatalog>(); }

std::unique_ptr<Cellset> AdoDataAccess::CreateCellset() { return std::make_unique<AdoCellset>(); }

std::unique_ptr<Recordset> AdoDataAccess::CreateRecordset() { return std::make_unique<AdoRecordset>(); }

} // namespace qel::windows
