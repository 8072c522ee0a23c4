#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/ServerSessions.h"

#include <memory>
#include <string>

namespace qel {

/// A connection to one catalog of a server.
class XmlaConnection : public Connection {
public:
    explicit XmlaConnection(std::shared_ptr<ServerSessions> sessions) : sessions_(std::move(sessions)) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override;
    void Close() override;
    /// Also closed after a request that got no proper answer.
    int State() const override;
    std::string ConnectionString() const override { return connectionString_; }
    std::string DefaultDatabase() const override;
    std::unique_ptr<Recordset> OpenSchema(int schema) override;

    /// The session of a client's connection. Raises AutomationError 3709 for a null or closed connection, or
    /// one of another provider.
    static std::shared_ptr<ServerSession> SessionOf(const std::shared_ptr<Connection>& connection);

private:
    std::shared_ptr<ServerSessions> sessions_;
    std::string connectionString_;
    std::shared_ptr<ServerSession> session_; ///< null while closed
};

} // namespace qel
