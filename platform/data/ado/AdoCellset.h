#pragma once

#include "platform/data/DataAccess.h"
#include "platform/windows/DispatchObject.h"

namespace qel::windows {

/// ADOMD.Cellset.
class AdoCellset : public Cellset {
public:
    AdoCellset() : cellset_(DispatchObject::Create(L"ADOMD.Cellset")) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override;
    void Close() override { cellset_.Call(L"Close"); }
    std::int32_t AxisCount() const override;
    std::int32_t PositionCount(std::int32_t axis) const override;
    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override;
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override;
    Variant Value(const std::vector<std::int32_t>& positions) const override;

private:
    DispatchObject Positions(std::int32_t axis) const;
    DispatchObject Members(std::int32_t axis, std::int32_t position) const;

    DispatchObject cellset_;
};

} // namespace qel::windows
