#pragma once

#include "platform/data/ConnectionText.h"
#include "platform/data/DataAccess.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/PlanCache.h"

#include <chrono>
#include <memory>
#include <string>

namespace qel {

class OpenCubeFiles;

/// The cube that the connection text names; the file's first one when the text has no Initial Catalog. Raises
/// AutomationError for a text, file or cube that cannot be opened.
std::shared_ptr<const engine::Cube> OpenCube(OpenCubeFiles& files, const std::string& connectionString);

/// A connection to one cube of a cube file, which is a catalog of its own.
class EmbeddedConnection : public Connection {
public:
    explicit EmbeddedConnection(std::shared_ptr<OpenCubeFiles> files) : files_(std::move(files)) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override;
    void Close() override;
    int State() const override { return cube_ ? stateOpen : stateClosed; }
    std::string ConnectionString() const override { return connectionString_; }
    std::string DefaultDatabase() const override { return cube_ ? cube_->Name() : ""; }
    std::unique_ptr<Recordset> OpenSchema(int schema) override;
    /// Looks at the file once per synchronisation period, and after a rest, which is how a recalculation
    /// begins. A file that is missing stays open. Raises AutomationError when the new one cannot be opened.
    bool Refresh() override;
    std::unique_ptr<const PreparedCell> Prepare(const CellQuery& query) override;

    /// The cube of a client's connection. Raises AutomationError 3709 for a null or closed connection, or one
    /// of another provider.
    static std::shared_ptr<const engine::Cube> CubeOf(const std::shared_ptr<Connection>& connection);

    /// Runs a statement on the cube of a connection. Raises 3709 as CubeOf does, or the statement's error.
    /// When the file was changed in place meanwhile, the statement is run once more, on what the file has
    /// become.
    static engine::Cellset Run(const std::shared_ptr<Connection>& connection, const std::string& statement);

private:
    using Clock = std::chrono::steady_clock;

    static EmbeddedConnection& OpenOne(const std::shared_ptr<Connection>& connection);
    void Take(std::shared_ptr<const engine::CubeFile> file);
    /// True when the path leads to another file than the open one, or to a changed one, which is then open.
    bool TakeNewFile();

    std::shared_ptr<OpenCubeFiles> files_;
    std::string connectionString_;
    ConnectionText text_;                          ///< the same, read
    std::shared_ptr<const engine::CubeFile> file_; ///< null while closed, like the cube
    std::shared_ptr<const engine::Cube> cube_;
    std::shared_ptr<engine::PlanCache> plans_; ///< of the file
    Clock::time_point lookedAt_;               ///< when the file was last looked at
    Clock::time_point usedAt_;
    bool hasNewData_ = false; ///< not yet reported by Refresh
};

} // namespace qel
