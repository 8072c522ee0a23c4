#pragma once

#include "platform/database/DatabaseConnection.h"
#include "wizard/WizardContext.h"

#include <string>
#include <vector>

namespace qel {

/// What a person chose in the name wizard.
struct NamedQuery {
    std::string cubeFile, cubeName;
    std::string dimType;    ///< "SuperSum1", ...
    std::string levelNum;   ///< its place among the levels of summary groups, from 1
    std::string dataMember; ///< the member's key
    std::string firma, obs; ///< what the list of members was restricted to

    bool operator==(const NamedQuery&) const = default;
};

/// A query as a row of the table QelName, and back. Raises 9 for a row of too few columns.
TableRow RowOf(const NamedQuery& query);
NamedQuery NamedQueryOf(const TableRow& row, const Locale& locale);

/// The queries that are kept, the one used last at the end.
class NamedQueries {
public:
    explicit NamedQueries(const WizardContext& context) : context_(context) {}

    const std::vector<NamedQuery>& All() const { return queries_; }
    /// Reads them; a local database that is missing is made. Raises what the database raises.
    void Load();
    /// Each of these writes them. Raises what the database raises; the change is then not kept.
    void Use(const NamedQuery& query);
    void Remove(std::size_t index);

private:
    void Write(std::vector<NamedQuery> queries);

    const WizardContext& context_;
    std::vector<NamedQuery> queries_;
};

} // namespace qel
