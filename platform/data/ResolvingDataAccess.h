#pragma once

#include "platform/data/DataAccess.h"

#include <functional>
#include <string>

namespace qel {

/// Chooses the provider that opens a connection text. The provider outlives every object made through it.
using ProviderChoice = std::function<DataAccess&(const std::string& connectionText)>;

/// Data-access objects that learn at their opening which provider serves them: a connection and a catalog by
/// the connection text, a cellset and a recordset by their connection. Until then nothing of a provider is
/// touched.
class ResolvingDataAccess : public DataAccess {
public:
    explicit ResolvingDataAccess(ProviderChoice choose) : choose_(std::move(choose)) {}

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    ProviderChoice choose_;
};

} // namespace qel
