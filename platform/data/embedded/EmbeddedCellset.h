#pragma once

#include "platform/data/DataAccess.h"
#include "qel/engine/Cellset.h"

#include <optional>

namespace qel {

/// The answer to one statement.
class EmbeddedCellset : public Cellset {
public:
    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override;
    void Close() override;
    std::int32_t AxisCount() const override;
    std::int32_t PositionCount(std::int32_t axis) const override;
    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override;
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override;
    Variant Value(const std::vector<std::int32_t>& positions) const override;

private:
    const engine::Cellset& Answer() const;

    std::optional<engine::Cellset> answer_;
};

} // namespace qel
