#include "platform/data/ado/LateBoundDataAccess.h"

#include "platform/data/ado/LateBoundCatalog.h"
#include "platform/data/ado/LateBoundCellset.h"
#include "platform/data/ado/LateBoundConnection.h"
#include "platform/data/ado/LateBoundRecordset.h"

namespace qel::windows {

std::shared_ptr<Connection> LateBoundDataAccess::CreateConnection() {
    return std::make_shared<LateBoundConnection>();
}

std::unique_ptr<Catalog> LateBoundDataAccess::CreateCatalog() { return std::make_unique<LateBoundCatalog>(); }

std::unique_ptr<Cellset> LateBoundDataAccess::CreateCellset() { return std::make_unique<LateBoundCellset>(); }

std::unique_ptr<Recordset> LateBoundDataAccess::CreateRecordset() {
    return std::make_unique<LateBoundRecordset>();
}

} // namespace qel::windows
