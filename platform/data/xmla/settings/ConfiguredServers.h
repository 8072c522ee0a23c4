#pragma once

#include "platform/data/xmla/XmlaDataAccess.h"

#include <functional>
#include <mutex>
#include <optional>

namespace qel {

/// The servers of the user's settings, which are read when the first one is asked for: what needs no server
/// does without. As many threads may use it as XmlaDataAccess.
class ConfiguredServers : public DataAccess {
public:
    /// `read` may raise AutomationError; then it is called again for the next request.
    explicit ConfiguredServers(std::function<ServerOptions()> read) : read_(std::move(read)) {}

    std::shared_ptr<Connection> CreateConnection() override { return Access().CreateConnection(); }
    std::unique_ptr<Catalog> CreateCatalog() override { return Access().CreateCatalog(); }
    std::unique_ptr<Cellset> CreateCellset() override { return Access().CreateCellset(); }
    std::unique_ptr<Recordset> CreateRecordset() override { return Access().CreateRecordset(); }

private:
    XmlaDataAccess& Access();

    std::function<ServerOptions()> read_;
    std::mutex mutex_; ///< guards the one below
    std::optional<XmlaDataAccess> access_;
};

} // namespace qel
