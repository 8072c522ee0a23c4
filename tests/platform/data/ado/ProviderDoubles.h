#pragma once

#include "tests/helpers/automation/DispatchDouble.h"
#include "tests/helpers/automation/NamedClass.h"

#include <memory>
#include <optional>

namespace qel::test {

/// Records the calls to the doubles, and scripts their failures.
struct ProviderLog {
    std::vector<std::string> opened;     ///< "text|user|password|options" of each connection
    std::vector<std::string> statements; ///< of each cellset
    std::vector<std::string> recordsets; ///< "statement|cursor|lock|options" of each recordset
    std::vector<std::string> catalogs;   ///< the connection text of each catalog, or "a connection"
    int connectionsClosed = 0, cellsetsClosed = 0, recordsetsClosed = 0;
    int alive = 0; ///< objects not yet released
    std::optional<ScriptedFailure> openFailure, statementFailure;
    std::string cubeFile = "double.cub"; ///< the data source that is the example's cube
};

/// Registers ADODB.Connection, ADODB.Recordset, ADOMD.Catalog and ADOMD.Cellset over the embedded engine for
/// this process.
class ProviderDoubles {
public:
    ProviderDoubles();
    ~ProviderDoubles();
    ProviderDoubles(const ProviderDoubles&) = delete;
    ProviderDoubles& operator=(const ProviderDoubles&) = delete;

    ProviderLog& Log() { return *log_; }

private:
    std::shared_ptr<ProviderLog> log_;
    std::vector<std::unique_ptr<NamedClass>> classes_;
};

} // namespace qel::test
