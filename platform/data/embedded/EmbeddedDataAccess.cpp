#include "platform/data/embedded/EmbeddedDataAccess.h"

#include "platform/data/embedded/EmbeddedCatalog.h"
#include "platform/data/embedded/EmbeddedCellset.h"
#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/EmbeddedRecordset.h"
#include "platform/data/embedded/OpenCubeFiles.h"

namespace qel {

EmbeddedDataAccess::EmbeddedDataAccess() : files_(std::make_shared<OpenCubeFiles>()) {}

void EmbeddedDataAccess::ReadIntoMemory() { files_->ReadIntoMemory(); }

std::shared_ptr<Connection> EmbeddedDataAccess::CreateConnection() {
    return std::make_shared<EmbeddedConnection>(files_);
}

std::unique_ptr<Catalog> EmbeddedDataAccess::CreateCatalog() {
    return std::make_unique<EmbeddedCatalog>(files_);
}

std::unique_ptr<Cellset> EmbeddedDataAccess::CreateCellset() { return MakeEmbeddedCellset(); }

std::unique_ptr<Recordset> EmbeddedDataAccess::CreateRecordset() { return MakeEmbeddedRecordset(); }

} // namespace qel
