#pragma once

#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::bench {

/// A condition of a cell: the line numbers of a dimension's table, or the days as 20240331, inclusive.
struct FactRange {
    std::string column; ///< "day", "account", "cost_centre", ...
    std::int64_t first = 0, last = 0;
};

/// What a peer sums for a formula.
struct CellRanges {
    std::vector<FactRange> where; ///< the days first
    bool isQuantity = false;      ///< in thousandths; otherwise the amount in cents

    /// The number in the cell.
    double ValueOf(std::int64_t sum) const {
        return static_cast<double>(sum) / (isQuantity ? 1000.0 : 100.0);
    }
};

/// Finds the lines of the ledger's tables that members stand for. They are sorted so that a group is a range.
class RangeFinder {
public:
    /// Raises std::runtime_error for a group that is no range.
    explicit RangeFinder(ledger::SqlDatabase& database);

    /// Nothing for a cell that is 0 by its dates alone. Raises std::out_of_range for a member that is not in
    /// the ledger.
    std::optional<CellRanges> Find(const ledger::Selection& selection) const;

private:
    struct Lines {
        std::int64_t first = 0, last = 0;
    };

    void Read(ledger::SqlDatabase& database, const std::string& table, const std::string& member);

    std::unordered_map<std::string, std::unordered_map<std::string, Lines>>
        lines_; ///< by "table.column" and member
    CalendarDay first_, last_;
};

} // namespace qel::bench
