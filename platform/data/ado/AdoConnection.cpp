#include "platform/data/ado/AdoConnection.h"

#include "platform/data/ado/AdoRecordset.h"
#include "platform/value/AutomationError.h"

namespace qel::windows {

std::unique_ptr<Recordset> AdoConnection::OpenSchema(int schema) {
    return std::make_unique<AdoRecordset>(
        connection_.Child(L"OpenSchema", ArgumentList(std::int32_t{schema})));
}

const DispatchObject& AdoConnection::ObjectOf(const std::shared_ptr<Connection>& connection) {
    constexpr std::int32_t invalidConnection = 3709;
    const auto* own = dynamic_cast<const AdoConnection*>(connection.get());
    if (own == nullptr) {
        throw AutomationError(invalidConnection,
                              "The connection cannot be used to perform this operation. It is either "
                              "closed or invalid in this context.");
    }
    return own->connection_;
}

} // namespace qel::windows
