#pragma once

#include "platform/database/DatabaseCatalog.h"

namespace qel::windows {

/// The local database in the machine's Jet engine, through ADOX and ADO. Its objects belong to the thread
/// that creates them.
class JetDatabase : public DatabaseEngine {
public:
    /// True when this process can load Jet's provider, ADOX and ADO. Jet has no 64-bit form.
    static bool IsInstalled();

    std::string Name() const override { return "Microsoft Jet 4.0"; }
    std::unique_ptr<DatabaseCatalog> NewCatalog() override;
    std::unique_ptr<DatabaseConnection> Open(const std::string& connectionString) override;
};

} // namespace qel::windows
