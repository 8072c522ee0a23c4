#pragma once

#include "platform/value/Variant.h"

#include <string>
#include <vector>

// The port through which the wizards keep their selections: the rows of an open local database.

namespace qel {

/// One value per column, in the table's order: a text, a date or Null. An empty text may be read back as
/// Null.
using TableRow = std::vector<Variant>;

/// An open local database, closed with its owner. Every operation raises AutomationError with the engine's
/// number and description.
class DatabaseConnection {
public:
    virtual ~DatabaseConnection() = default;
    /// Every row, in the order in which they were written.
    virtual std::vector<TableRow> ReadRows(const std::string& table) = 0;
    /// Replaces all rows of the table. On failure the table is unchanged.
    virtual void ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) = 0;
};

} // namespace qel
