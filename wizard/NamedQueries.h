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
    std::string levelNum;   ///< its number among the levels of summary groups, from 1
    std::string dataMember; ///< the member's key
    std::string firma, obs; ///< the restriction of the list of members

    bool operator==(const NamedQuery&) const = default;
};

/// A query as a row of the table QelName, and back. Raises 9 for a row of too few columns.
TableRow RowOf(const NamedQuery& query);
NamedQuery NamedQueryOf(const TableRow& row, const Locale& locale);

/// The saved queries; the last used one is at the end.
class NamedQueries {
public:
    explicit NamedQueries(const WizardContext& context) : context_(context) {}

    const std::vector<NamedQuery>& All() const { return queries_; }
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
