#include "platform/data/xmla/XmlaRecordset.h"

#include "platform/data/InMemoryRecordset.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/XmlaConnection.h"

namespace qel {

namespace {

Rowset Run(const std::string& statement, const std::shared_ptr<Connection>& connection,
           const Recordset::Progress& /*progress*/) {
    return XmlaConnection::SessionOf(connection)->ExecuteTabular(statement).TakeRowset();
}

} // namespace

std::unique_ptr<Recordset> MakeXmlaRecordset(std::optional<Rowset> rows) {
    return std::make_unique<InMemoryRecordset>(serverProvider, &Run, std::move(rows));
}

} // namespace qel
