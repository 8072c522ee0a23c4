#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/ServerOptions.h"

#include <memory>

namespace qel {

class ServerSessions;

/// The data-access objects over servers that speak XMLA 1.1 over HTTP. One object serves any number of
/// threads; the connections, catalogs and cellsets that it makes belong to one thread each and may outlive
/// it.
class XmlaDataAccess : public DataAccess {
public:
    explicit XmlaDataAccess(ServerOptions options = {});

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    std::shared_ptr<ServerSessions> sessions_;
};

} // namespace qel
