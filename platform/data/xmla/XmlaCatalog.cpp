#include "platform/data/xmla/XmlaCatalog.h"

#include "platform/data/ObjectErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/XmlaConnection.h"
#include "platform/data/xmla/XmlaDimension.h"

namespace qel {

void XmlaCatalog::SetActiveConnection(const std::string& connectionString) {
    session_ = sessions_->Open(connectionString);
}

void XmlaCatalog::SetActiveConnection(const std::shared_ptr<Connection>& connection) {
    session_ = XmlaConnection::SessionOf(connection);
}

std::unique_ptr<CubeDef> XmlaCatalog::CubeAt(std::int32_t index) const {
    if (!session_) {
        throw NoActiveConnectionError(serverProvider);
    }
    CheckedIndex(index, 1);
    return MakeXmlaCube(session_);
}

} // namespace qel
