#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/Cube.h"

#include <memory>

namespace qel {

class OpenCubeFiles;

/// The catalog of a connection: the one cube that its Initial Catalog names.
class EmbeddedCatalog : public Catalog {
public:
    explicit EmbeddedCatalog(std::shared_ptr<OpenCubeFiles> files) : files_(std::move(files)) {}

    void SetActiveConnection(const std::string& connectionString) override;
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override;
    std::int32_t CubeCount() const override { return cube_ ? 1 : 0; }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override;

private:
    std::shared_ptr<OpenCubeFiles> files_;
    std::shared_ptr<const engine::Cube> cube_;
};

} // namespace qel
