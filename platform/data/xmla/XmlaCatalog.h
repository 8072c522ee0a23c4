#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/ServerSessions.h"

#include <memory>

namespace qel {

/// The catalog of a connection, with the cube named like it. Its cubes keep the session open.
class XmlaCatalog : public Catalog {
public:
    explicit XmlaCatalog(std::shared_ptr<ServerSessions> sessions) : sessions_(std::move(sessions)) {}

    void SetActiveConnection(const std::string& connectionString) override;
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override;
    std::int32_t CubeCount() const override { return session_ ? 1 : 0; }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override;

private:
    std::shared_ptr<ServerSessions> sessions_;
    std::shared_ptr<ServerSession> session_;
};

} // namespace qel
