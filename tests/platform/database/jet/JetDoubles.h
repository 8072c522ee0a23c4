#pragma once

#include "platform/value/Variant.h"
#include "tests/helpers/automation/DispatchDouble.h"
#include "tests/helpers/automation/NamedClass.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::test {

/// Records the calls in order, holds the tables, and scripts failures.
struct JetLog {
    std::vector<std::string> calls;
    std::map<std::string, std::vector<std::vector<Variant>>> tables;
    std::map<std::string, std::vector<std::vector<Variant>>> beforeTransaction;
    std::map<std::string, std::size_t> columns; ///< of each table
    std::string failingCall;                    ///< the first word of the call that fails
    int alive = 0;                              ///< objects not yet released
};

/// Registers Jet's provider, ADOX.Catalog, ADOX.Table, ADODB.Connection and ADODB.Recordset for this process,
/// with the members that creating a database and replacing rows need. Create writes a file with Jet's
/// signature and rejects an existing one.
class JetDoubles {
public:
    JetDoubles();

    JetLog& Log() { return *log_; }
    /// Takes the provider away, as on a machine with ADO alone.
    void RemoveProvider() { provider_.reset(); }
    /// Takes ADO and ADOX away, too.
    void RemoveObjects() { classes_.clear(); }

private:
    std::shared_ptr<JetLog> log_ = std::make_shared<JetLog>();
    std::vector<std::unique_ptr<NamedClass>> classes_;
    std::unique_ptr<NamedClass> provider_;
};

} // namespace qel::test
