#pragma once

#include "platform/data/DataAccess.h"
#include "platform/windows/DispatchObject.h"

namespace qel::windows {

/// ADOMD.Catalog and everything reached through it.
class AdoCatalog : public Catalog {
public:
    AdoCatalog() : catalog_(DispatchObject::Create(L"ADOMD.Catalog")) {}

    void SetActiveConnection(const std::string& connectionString) override;
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override;
    std::int32_t CubeCount() const override;
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override;

private:
    DispatchObject catalog_;
};

} // namespace qel::windows
