#pragma once

#include "platform/database/DatabaseConnection.h"
#include "wizard/WizardContext.h"

#include <optional>
#include <string>
#include <vector>

namespace qel {

/// What a person chose in the name wizard.
struct NamedQuery {
    std::string cubeFile, cubeName;
    std::string dimType;    ///< "SuperSum1", ...
    std::string levelNum;   ///< its number among the levels of summary groups, from 1
    std::string dataMember; ///< the member's key
    std::string firma, obs; ///< the restriction of the list of members
    std::string name = {};  ///< of the member; may be empty

    /// The same choice, whatever the member is called.
    bool operator==(const NamedQuery& other) const;
};

/// "Sale of goods - SuperSum2 41 - LedgerFNC, ledger.cub (/cubes)".
std::string DescriptionOf(const NamedQuery& query);

/// The same in one row of the list of queries: the middle of a long name, file name or folder is left out.
std::string ShortDescriptionOf(const NamedQuery& query);

/// A query as a row of the table QelName, and back. The column of the member has its name after its key.
/// Raises 9 for a row of too few columns.
TableRow RowOf(const NamedQuery& query);
NamedQuery NamedQueryOf(const TableRow& row, const Locale& locale);

/// The saved queries: the last used ones, the newest first.
class NamedQueries {
public:
    explicit NamedQueries(const WizardContext& context) : context_(context) {}

    const std::vector<NamedQuery>& All() const { return queries_; }
    /// The place of a query, or nullopt.
    std::optional<std::size_t> Find(const NamedQuery& query) const;
    /// Reads the queries. A missing local database is created. Raises what the database raises.
    void Load();
    /// Both save the queries. On failure they raise what the database raises, and the change is lost.
    void Use(const NamedQuery& query);
    void Remove(std::size_t index);

private:
    void Write(std::vector<NamedQuery> queries);

    const WizardContext& context_;
    std::vector<NamedQuery> queries_;
};

} // namespace qel
