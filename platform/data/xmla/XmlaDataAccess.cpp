#include "platform/data/xmla/XmlaDataAccess.h"

#include "platform/data/xmla/ServerSessions.h"
#include "platform/data/xmla/XmlaCatalog.h"
#include "platform/data/xmla/XmlaCellset.h"
#include "platform/data/xmla/XmlaConnection.h"
#include "platform/data/xmla/XmlaRecordset.h"

namespace qel {

XmlaDataAccess::XmlaDataAccess(ServerOptions options)
    : sessions_(std::make_shared<ServerSessions>(std::move(options))) {}

std::shared_ptr<Connection> XmlaDataAccess::CreateConnection() {
    return std::make_shared<XmlaConnection>(sessions_);
}

std::unique_ptr<Catalog> XmlaDataAccess::CreateCatalog() { return std::make_unique<XmlaCatalog>(sessions_); }

std::unique_ptr<Cellset> XmlaDataAccess::CreateCellset() { return MakeXmlaCellset(); }

std::unique_ptr<Recordset> XmlaDataAccess::CreateRecordset() { return MakeXmlaRecordset(); }

} // namespace qel
