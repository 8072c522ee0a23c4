#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/PlanCache.h"

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

    /// The cube of a client's connection. Raises AutomationError 3709 for a null or closed connection, or one
    /// of another provider.
    static std::shared_ptr<const engine::Cube> CubeOf(const std::shared_ptr<Connection>& connection);

    /// Runs a statement on the cube of a connection. Raises 3709 as CubeOf does, or the statement's error.
    static engine::Cellset Run(const std::shared_ptr<Connection>& connection, const std::string& statement);

private:
    static const EmbeddedConnection& OpenOne(const std::shared_ptr<Connection>& connection);

    std::shared_ptr<OpenCubeFiles> files_;
    std::string connectionString_;
    std::shared_ptr<const engine::CubeFile> file_; ///< null while closed, like the cube
    std::shared_ptr<const engine::Cube> cube_;
    std::shared_ptr<engine::PlanCache> plans_; ///< of the file
};

} // namespace qel
