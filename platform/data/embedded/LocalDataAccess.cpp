#include "platform/data/embedded/LocalDataAccess.h"

#include "platform/data/embedded/LocalCatalog.h"
#include "platform/data/embedded/LocalCellset.h"
#include "platform/data/embedded/LocalConnection.h"
#include "platform/data/embedded/LocalRecordset.h"
#include "platform/data/embedded/OpenCubeFiles.h"

namespace qel {

LocalDataAccess::LocalDataAccess() : files_(std::make_shared<OpenCubeFiles>()) {}

std::shared_ptr<Connection> LocalDataAccess::CreateConnection() {
    return std::make_shared<LocalConnection>(files_);
}

std::unique_ptr<Catalog> LocalDataAccess::CreateCatalog() { return std::make_unique<LocalCatalog>(files_); }

std::unique_ptr<Cellset> LocalDataAccess::CreateCellset() { return std::make_unique<LocalCellset>(); }

std::unique_ptr<Recordset> LocalDataAccess::CreateRecordset() { return std::make_unique<LocalRecordset>(); }

} // namespace qel
