#pragma once

#include "examples/ledger/reference/Selection.h"
#include "examples/ledger/reference/Sqlite.h"

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::bench {

/// Puts the ledger of the folder into an SQLite database laid out for reading cells: codes as small numbers
/// in tree order, so that a summary group is a range, and covering indexes that begin with the account, the
/// OBS leaf, the cost centre and the activity.
/// Without `facts` it has the ledger and its tables alone, from which formulas can be drawn.
void MakeSqliteDatabase(const std::filesystem::path& csvFolder, const std::filesystem::path& file,
                        bool facts);

/// A cell as SQLite answers it: a statement that is prepared already and the values to bind.
struct SqliteCell {
    ledger::SqlStatement* statement = nullptr; ///< none for a cell that is 0 by its dates alone
    std::string sql;
    std::vector<std::int64_t> values;
    double scale = 1;
};

/// The same cells through SQLite, which chooses among the indexes by its own statistics.
class SqlitePeer {
public:
    explicit SqlitePeer(const std::filesystem::path& file);

    /// The work that a program does once for each shape of formula is done here. The cell points into this
    /// object. Raises std::out_of_range for a member that the ledger lacks.
    SqliteCell Prepare(const ledger::Selection& selection);
    /// Binds and runs: the number that the formula's cell shows.
    static double Run(const SqliteCell& cell);
    /// The same from the statement's text, as the component does for every formula.
    double RunText(const SqliteCell& cell);

    ledger::SqlDatabase& Database() { return database_; }
    /// False for a database that was made without; it answers no cell.
    bool HasFacts() const { return hasFacts_; }

private:
    /// The numbers of the lines of a table that a member stands for.
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
