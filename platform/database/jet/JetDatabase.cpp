#include "platform/database/jet/JetDatabase.h"

#include "platform/database/jet/JetCatalog.h"
#include "platform/database/jet/JetConnection.h"

namespace qel::windows {

bool JetDatabase::IsInstalled() {
    return CanLoadClass(L"Microsoft.Jet.OLEDB.4.0") && CanLoadClass(L"ADOX.Catalog") &&
           CanLoadClass(L"ADODB.Connection");
}

std::unique_ptr<DatabaseCatalog> JetDatabase::NewCatalog() { return std::make_unique<JetCatalog>(); }

std::unique_ptr<DatabaseConnection> JetDatabase::Open(const std::string& connectionString) {
    return std::make_unique<JetConnection>(connectionString);
}

} // namespace qel::windows
