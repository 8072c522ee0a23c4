#pragma once

#include "platform/data/DataAccess.h"

#include <memory>

namespace qel {

class OpenCubeFiles;

/// The data-access objects over the embedded cube engine. One object serves any number of threads; the
/// connections, catalogs and cellsets that it makes belong to one thread each and may outlive it.
class EmbeddedDataAccess : public DataAccess {
public:
    EmbeddedDataAccess();

    /// Files that are opened from now on are read into memory: no other program can change what is read.
    void ReadIntoMemory();

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    std::shared_ptr<OpenCubeFiles> files_;
};

} // namespace qel
