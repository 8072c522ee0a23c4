#pragma once

#include "platform/data/xmla/CellsetAnswer.h"
#include "platform/data/xmla/ChannelPool.h"
#include "platform/data/xmla/RowsetAnswer.h"
#include "platform/data/xmla/ServerCube.h"
#include "platform/data/xmla/XmlaRequest.h"
#include "platform/value/AutomationError.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// One catalog of a server: sends requests and caches the cube's metadata. Equal connection texts share a
/// session, so that metadata is read once. Thread-safe.
class ServerSession {
public:
    /// Called with the failure of a request that got no proper answer, and with its duration.
    using LossListener =
        std::function<void(const AutomationError& error, std::chrono::steady_clock::duration taken)>;

    /// Sends no request yet. `catalog` may be empty.
    ServerSession(ServerAddress address, const ServerOptions& options, std::string catalog,
                  LossListener onLoss = {})
        : channels_(std::move(address), options), catalog_(std::move(catalog)), onLoss_(std::move(onLoss)) {}

    const std::string& Url() const { return channels_.Address().url; }
    /// Spelled as the server spells it once RequireCatalog has found it.
    const std::string& CatalogName() const { return catalog_; }
    /// True after a request that got no proper answer. The next user opens a new session.
    bool IsLost() const { return isLost_; }

    /// The catalogs that the server lists.
    std::vector<std::string> Catalogs();
    /// Raises AutomationError, listing the server's catalogs, when the catalog is missing. With an empty name
    /// it only checks that the server answers.
    void RequireCatalog();
    /// The names of the catalog's cubes; the one named like the catalog comes first.
    std::vector<std::string> CubeNames() { return CubesOf(catalog_); }
    /// The same of any catalog of the server.
    std::vector<std::string> CubesOf(const std::string& catalog);
    /// The first cube. Raises AutomationError when the catalog has none.
    const ServerCube& Cube();
    /// The members of a level, read on first use.
    const ServerMembers& MembersOf(const ServerLevel& level);

    /// A restriction to a catalog comes first, and also selects the catalog of the request.
    RowsetAnswer Discover(const std::string& requestType, const XmlaPairs& restrictions);
    /// The statement is adapted first, see StatementForServer.h.
    CellsetAnswer Execute(const std::string& statement);
    RowsetAnswer ExecuteTabular(const std::string& statement);

private:
    /// Sends one request and reads its answer into a new `Answer`.
    template <class Answer>
    Answer Ask(const std::string& body, const char* action);
    void AskOnce(const std::string& body, const char* action, XmlHandler& content);
    std::string ForServer(const std::string& statement);
    std::optional<std::string> FindBelowHierarchy(const std::string& hierarchy, const std::string& name);
    XmlaPairs CubeRestrictions() const;
    void LoadCube();

    ChannelPool channels_;
    std::string catalog_;
    LossListener onLoss_;
    std::atomic<bool> isLost_ = false;
    std::recursive_mutex
        metadata_; ///< guards the two members below, also while they are read from the server
    std::optional<ServerCube> cube_;
    std::map<std::string, ServerMembers> members_; ///< by the level's unique name
};

} // namespace qel
