#pragma once

#include "platform/database/DatabaseCatalog.h"
#include "platform/windows/DispatchObject.h"

namespace qel::windows {

/// ADOX.Catalog.
class JetCatalog : public DatabaseCatalog {
public:
    JetCatalog() : catalog_(DispatchObject::Create(L"ADOX.Catalog")) {}

    void Create(const std::string& connectionString) override;
    void AppendTable(const TableDefinition& table) override;

private:
    DispatchObject catalog_;
};

/// Raises `number` for a file of another engine, for which Jet would only report an unrecognised format.
void RefuseOtherEngine(const std::string& connectionString, std::int32_t number);

} // namespace qel::windows
