#pragma once

#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::bench {

/// Loads the folder's ledger into an SQLite database laid out for reading cells: codes are small numbers in
/// tree order, so that a summary group is a range, with covering indexes that start with the account, the OBS
/// leaf, the cost centre and the activity. Without `facts` it only holds the ledger and its tables, from
/// which formulas are drawn.
void MakeSqliteDatabase(const std::filesystem::path& csvFolder, const std::filesystem::path& file,
                        bool facts);

/// A cell for SQLite: a prepared statement and the values to bind.
struct SqliteCell {
    ledger::SqlStatement* statement = nullptr; ///< null for a cell that is 0 by its dates alone
    std::string sql;
    std::vector<std::int64_t> values;
    double scale = 1;
};

/// The same cells computed by SQLite, which chooses an index by its statistics.
class SqlitePeer {
public:
    explicit SqlitePeer(const std::filesystem::path& file);

    /// Does the work that a program would do once per kind of formula. The cell refers to this object. Raises
    /// std::out_of_range for a member that is not in the ledger.
    SqliteCell Prepare(const ledger::Selection& selection);
    /// Binds the values and runs the statement. Returns the number that the formula shows.
    static double Run(const SqliteCell& cell);
    /// The same starting from the statement's text, as the component does for every formula.
    double RunText(const SqliteCell& cell);

    ledger::SqlDatabase& Database() { return database_; }
    /// False for a database without facts, which computes no cells.
    bool HasFacts() const { return hasFacts_; }

private:
    /// The row numbers of a table that a member stands for.
    struct Range {
        std::int64_t first = 0, last = 0;
    };
    using Ranges = std::unordered_map<std::string, Range>;

    void ReadRanges(const std::string& table, const std::string& member);
    const Range& Find(const std::string& table, const std::string& column, const std::string& member) const;

    ledger::SqlDatabase database_;
    std::unordered_map<std::string, Ranges> ranges_; ///< by "table.column"
    std::unordered_map<std::string, ledger::SqlStatement> statements_;
    bool hasFacts_;
    CalendarDay first_, last_;
};

} // namespace qel::bench
