#pragma once

#include "bench/CellRanges.h"
#include "examples/ledger/reference/Sqlite.h"

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::bench {

/// Loads the folder's ledger into an SQLite database laid out for reading cells: codes are small numbers in
/// tree order, so that a summary group is a range, with covering indexes that start with the account, the OBS
/// leaf, the cost centre and the activity. Without `facts` it only holds the tables and one in a hundred
/// ledger lines, from which formulas are drawn.
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

    /// Does the work that a program would do once per kind of formula. The cell refers to this object.
    SqliteCell Prepare(const std::optional<CellRanges>& cell);
    /// Binds the values and runs the statement. Returns the number that the formula shows.
    static double Run(const SqliteCell& cell);
    /// The same starting from the statement's text, as the component does for every formula.
    double RunText(const SqliteCell& cell);

    ledger::SqlDatabase& Database() { return database_; }
    /// False for a database without facts, which computes no cells.
    bool HasFacts() const { return hasFacts_; }

private:
    ledger::SqlDatabase database_;
    std::unordered_map<std::string, ledger::SqlStatement> statements_;
    bool hasFacts_;
};

} // namespace qel::bench
