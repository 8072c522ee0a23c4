#include "platform/data/embedded/EmbeddedCatalog.h"

#include "platform/data/ObjectErrors.h"
#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/EmbeddedDimension.h"
#include "platform/data/embedded/MeasuresDimension.h"
#include "platform/data/embedded/ProviderErrors.h"

#include <fmt/format.h>

namespace qel {

namespace {

/// [Measures] comes first, then the cube's own dimensions in their order.
class EmbeddedCubeDef : public CubeDef {
public:
    explicit EmbeddedCubeDef(std::shared_ptr<const engine::Cube> cube) : cube_(std::move(cube)) {}

    std::string Name() const override { return cube_->Name(); }

    std::int32_t DimensionCount() const override {
        return static_cast<std::int32_t>(cube_->Dimensions().size()) + 1;
    }

    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        const auto place = CheckedIndex(index, static_cast<std::size_t>(DimensionCount()));
        return place == 0 ? MakeMeasuresDimension(cube_) : MakeLocalDimension(cube_, place - 1);
    }

    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        if (IsMeasuresName(name)) {
            return MakeMeasuresDimension(cube_);
        }
        const auto found = cube_->FindDimension(name);
        if (!found) {
            throw ProviderError(errorItemNotFound,
                                fmt::format("The cube '{}' has no dimension '{}'.", cube_->Name(), name));
        }
        return MakeLocalDimension(cube_, *found);
    }

private:
    std::shared_ptr<const engine::Cube> cube_;
};

} // namespace

void EmbeddedCatalog::SetActiveConnection(const std::string& connectionString) {
    cube_ = OpenCube(*files_, connectionString);
}

void EmbeddedCatalog::SetActiveConnection(const std::shared_ptr<Connection>& connection) {
    cube_ = EmbeddedConnection::CubeOf(connection);
}

std::unique_ptr<CubeDef> EmbeddedCatalog::CubeAt(std::int32_t index) const {
    if (!cube_) {
        throw NoActiveConnectionError(embeddedProvider);
    }
    CheckedIndex(index, 1);
    return std::make_unique<EmbeddedCubeDef>(cube_);
}

} // namespace qel
