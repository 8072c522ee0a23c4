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

/// One catalog of a server: requests, and what was read of its cube so far. Everything that names the same
/// connection text shares one, so that a server's metadata is read once. Safe for any number of threads.
class ServerSession {
public:
    /// Told how a request failed to which no proper answer came, and how long that took.
    using LossListener =
        std::function<void(const AutomationError& error, std::chrono::steady_clock::duration taken)>;

    /// Asks nothing yet. `catalog` may be empty.
    ServerSession(ServerAddress address, const ServerOptions& options, std::string catalog,
                  LossListener onLoss = {})
        : channels_(std::move(address), options), catalog_(std::move(catalog)), onLoss_(std::move(onLoss)) {}

    const std::string& Url() const { return channels_.Address().url; }
    /// In the server's letters once RequireCatalog has found it.
    const std::string& CatalogName() const { return catalog_; }
    /// True after a request to which no proper answer came: the next user opens a session afresh.
    bool IsLost() const { return isLost_; }

    /// The catalogs that the server lists.
    std::vector<std::string> Catalogs();
    /// Raises AutomationError naming the server's catalogs when it has none of the name; with an empty name,
    /// only makes sure that the server answers.
    void RequireCatalog();
    /// The names of the catalog's cubes; first the one that is named as the catalog.
    std::vector<std::string> CubeNames();
    /// The first of them. Raises AutomationError when there is none.
    const ServerCube& Cube();
    /// The members of one of the cube's levels, read when they are asked for first.
    const ServerMembers& MembersOf(const ServerLevel& level);

    RowsetAnswer Discover(const std::string& requestType, const XmlaPairs& restrictions);
    /// The statement's text is changed as StatementForServer.h says.
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
    std::recursive_mutex metadata_; ///< guards the two below; held while they are read from the server
    std::optional<ServerCube> cube_;
    std::map<std::string, ServerMembers> members_; ///< by the level's unique name
};

} // namespace qel
