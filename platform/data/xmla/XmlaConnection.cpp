#include "platform/data/xmla/XmlaConnection.h"

#include "platform/data/ObjectErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/XmlaRecordset.h"

namespace qel {

void XmlaConnection::Open(const std::string& connectionString, const std::string& /*user*/,
                          const std::string& /*password*/, int /*options*/) {
    if (State() == stateOpen) {
        throw ObjectOpenError(serverProvider);
    }
    session_ = sessions_->Open(connectionString);
    connectionString_ = connectionString;
}

void XmlaConnection::Close() {
    if (!session_) {
        throw ObjectClosedError(serverProvider);
    }
    session_ = nullptr;
}

int XmlaConnection::State() const { return session_ && !session_->IsLost() ? stateOpen : stateClosed; }

std::string XmlaConnection::DefaultDatabase() const { return session_ ? session_->CatalogName() : ""; }

std::unique_ptr<Recordset> XmlaConnection::OpenSchema(int schema) {
    if (!session_) {
        throw ObjectClosedError(serverProvider);
    }
    if (schema != schemaCatalogs) {
        return Connection::OpenSchema(schema);
    }
    return MakeXmlaRecordset(session_->Discover("DBSCHEMA_CATALOGS", {}).TakeRowset());
}

std::shared_ptr<ServerSession> XmlaConnection::SessionOf(const std::shared_ptr<Connection>& connection) {
    const auto* own = dynamic_cast<const XmlaConnection*>(connection.get());
    if (!own || own->State() != stateOpen) {
        throw InvalidConnectionError(serverProvider);
    }
    return own->session_;
}

} // namespace qel
