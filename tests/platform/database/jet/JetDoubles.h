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

/// What the doubles were asked, in order, the tables that they keep, and how they are to fail.
struct JetLog {
    std::vector<std::string> calls;
    std::map<std::string, std::vector<std::vector<Variant>>> tables;
    std::map<std::string, std::vector<std::vector<Variant>>> beforeTransaction;
    std::map<std::string, std::size_t> columns; ///< of each table
    std::string failingCall;                    ///< the first word of the call that fails
    int alive = 0;                              ///< objects that are still referenced
};

/// Jet's provider, ADOX.Catalog, ADOX.Table, ADODB.Connection and ADODB.Recordset for this process, as far as
/// a database is made and its tables' rows are read and replaced. Create makes a file that starts as Jet's
/// files do, and refuses one that exists.
class JetDoubles {
public:
    JetDoubles();

    JetLog& Log() { return *log_; }
    /// Takes the provider away, as on a machine with ADO alone.
    void RemoveProvider() { provider_.reset(); }

private:
    std::shared_ptr<JetLog> log_ = std::make_shared<JetLog>();
    std::vector<std::unique_ptr<NamedClass>> classes_;
    std::unique_ptr<NamedClass> provider_;
};

} // namespace qel::test
