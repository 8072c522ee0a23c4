#pragma once

#include "platform/value/Variant.h"

#include <string>
#include <vector>

// The port through which the wizards keep their selections: the rows of an open local database.

namespace qel {

/// A value for every column of its table, in the table's order: texts, dates, and Null for none. An empty
/// text may be read back as Null.
using TableRow = std::vector<Variant>;

/// An open local database, closed with its owner. Every operation raises AutomationError with the engine's
/// number and description.
class DatabaseConnection {
public:
    virtual ~DatabaseConnection() = default;
    /// Every row, in the order in which they were written.
    virtual std::vector<TableRow> ReadRows(const std::string& table) = 0;
    /// Puts rows in place of all that the table has. When that fails, the table is as it was.
    virtual void ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) = 0;
};

} // namespace qel
