#pragma once

#include "platform/data/DataAccess.h"

#include <functional>
#include <memory>
#include <string>

namespace qel {

/// How a caller waits for operations that may take long.
struct Waiting {
    /// Told the connection text before it is opened. What it raises is passed on, and nothing is opened.
    std::function<void(const std::string& connectionText)> opening;
    /// Runs an operation, on any thread, and returns when it has ended. Raises what the operation raises.
    std::function<void(const std::function<void()>& operation)> run;
};

/// The objects of another provider. Those of their operations that may ask a server are run by a Waiting;
/// while one runs, the caller leaves the objects alone.
class WaitingDataAccess : public DataAccess {
public:
    /// Makes the other provider, or gives the one that was made. Raises what making it raises.
    using Provider = std::function<DataAccess&()>;

    WaitingDataAccess(Provider provider, Waiting waiting)
        : provider_(std::move(provider)), waiting_(std::make_shared<const Waiting>(std::move(waiting))) {}

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    Provider provider_;
    std::shared_ptr<const Waiting> waiting_;
};

} // namespace qel
