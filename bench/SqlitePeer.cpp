#include "bench/SqlitePeer.h"

#include "examples/ledger/reference/LedgerDatabase.h"
#include "examples/ledger/reference/PlainSums.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace qel::bench {
namespace {

using ledger::Selection;

/// "2024-03-31" is 20240331.
std::int64_t DayNumber(std::string iso) {
    iso.erase(std::remove(iso.begin(), iso.end(), '-'), iso.end());
    return std::stoll(iso);
}

CalendarDay ToCalendar(std::int64_t day) {
    return {static_cast<int>(day / 10000), static_cast<int>(day / 100 % 100), static_cast<int>(day % 100)};
}

constexpr const char* factsSql = R"sql(
    CREATE TABLE facts AS
    SELECT CAST(replace(l.date, '-', '') AS INTEGER) AS day, accounts.rowid AS account,
           activities.rowid AS activity, cost_centres.rowid AS cost_centre, obs.rowid AS obs,
           obs_numbers.rowid AS obs_number, plbs.rowid AS plbs, rh.rowid AS rh, firms.rowid AS firm,
           opening_balance.rowid AS opening_balance, money_sets.rowid AS money_set, l.amount AS amount,
           l.quantity AS quantity
    FROM ledger l
    JOIN accounts ON accounts.code = l.account
    JOIN activities ON activities.code = l.activity
    JOIN cost_centres ON cost_centres.code = l.cost_centre
    JOIN obs ON obs.code = l.obs
    JOIN obs_numbers ON obs_numbers.code = l.obs_number
    JOIN plbs ON plbs.code = l.plbs
    JOIN rh ON rh.code = l.rh
    JOIN firms ON firms.code = l.firm
    JOIN opening_balance ON opening_balance.code = l.opening_balance
    JOIN money_sets ON money_sets.code = l.money_set)sql";

constexpr const char* numberedStructure = "obs_name || '.' || obs_number";
constexpr const char* smallColumns =
    "obs_number, plbs, rh, firm, opening_balance, money_set, amount, quantity";

/// Conditions with their values, in order.
struct Where {
    std::string sql = "day BETWEEN ? AND ?";
    std::vector<std::int64_t> values;

    void Between(const char* column, std::int64_t first, std::int64_t last) {
        if (first == last) {
            sql += fmt::format(" AND {} = ?", column);
            values.push_back(first);
            return;
        }
        sql += fmt::format(" AND {} BETWEEN ? AND ?", column);
        values.insert(values.end(), {first, last});
    }
};

double BindAndRun(ledger::SqlStatement& statement, const SqliteCell& cell) {
    for (std::size_t i = 0; i < cell.values.size(); ++i) {
        statement.Bind(static_cast<int>(i) + 1, cell.values[i]);
    }
    statement.Step();
    const auto sum = static_cast<double>(statement.Number(0));
    statement.Reset();
    return sum / cell.scale;
}

} // namespace

void MakeSqliteDatabase(const std::filesystem::path& csvFolder, const std::filesystem::path& file,
                        bool facts) {
    ledger::SqlDatabase database(file.string());
    database.Run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
    ledger::LoadLedger(csvFolder, database);
    if (!facts) {
        return;
    }
    for (const char* table : {"accounts", "activities", "cost_centres", "obs", "obs_numbers"}) {
        database.Run(fmt::format("CREATE INDEX {0}_by_code ON {0} (code)", table));
    }
    database.Run(factsSql);
    const std::int64_t lines = database.Number("SELECT count(*) FROM ledger");
    if (database.Number("SELECT count(*) FROM facts") != lines) {
        throw std::runtime_error("The SQLite tables do not hold every ledger line once.");
    }
    database.Run(
        fmt::format("CREATE INDEX by_account ON facts (account, obs, day, cost_centre, activity, {0});"
                    "CREATE INDEX by_obs ON facts (obs, account, day, cost_centre, activity, {0});"
                    "CREATE INDEX by_centre ON facts (cost_centre, account, day, obs, activity, {0});"
                    "CREATE INDEX by_activity ON facts (activity, account, day, obs, cost_centre, {0});"
                    "CREATE INDEX by_number ON facts (obs_number, day, account, obs, cost_centre, "
                    "activity, {0});",
                    smallColumns));
    database.Run("ANALYZE");
}

SqlitePeer::SqlitePeer(const std::filesystem::path& file)
    : database_(file.string()),
      hasFacts_(database_.Number("SELECT count(*) FROM sqlite_master WHERE name = 'facts'") != 0) {
    database_.Run("PRAGMA query_only = ON; PRAGMA mmap_size = 8000000000; PRAGMA cache_size = -1000000");
    if (!hasFacts_) {
        return;
    }
    for (const char* table :
         {"accounts", "activities", "cost_centres", "firms", "plbs", "rh", "opening_balance", "money_sets"}) {
        ReadRanges(table, "code");
    }
    for (const char* column : {"group1", "group2", "group3"}) {
        ReadRanges("accounts", column);
    }
    for (const char* level : {"level1", "level2", "level3", "level4"}) {
        ReadRanges("obs", fmt::format("{}_name", level));
        ReadRanges("obs", fmt::format("{}_name_he", level));
    }
    ReadRanges("obs_numbers", numberedStructure);
    first_ = ToCalendar(database_.Number("SELECT min(day) FROM facts"));
    last_ = ToCalendar(database_.Number("SELECT max(day) FROM facts"));
}

void SqlitePeer::ReadRanges(const std::string& table, const std::string& member) {
    ledger::SqlStatement rows = database_.Prepare(
        fmt::format("SELECT {1}, min(rowid), max(rowid), count(*) FROM {0} GROUP BY 1", table, member));
    Ranges& ranges = ranges_[table + "." + member];
    while (rows.Step()) {
        const Range range{rows.Number(1), rows.Number(2)};
        if (rows.Number(3) != range.last - range.first + 1) {
            throw std::runtime_error(fmt::format("{} of {} is no range of lines.", rows.Text(0), table));
        }
        ranges[rows.Text(0)] = range;
    }
}

const SqlitePeer::Range& SqlitePeer::Find(const std::string& table, const std::string& column,
                                          const std::string& member) const {
    return ranges_.at(table + "." + column).at(member);
}

SqliteCell SqlitePeer::Prepare(const Selection& selection) {
    const std::optional<ledger::DaySpan> days = CoveredDays(selection, first_, last_);
    if (!days) {
        return {};
    }
    Where where;
    where.values = {DayNumber(days->first), DayNumber(days->second)};
    const auto add = [&](const char* factColumn, const char* table, const std::string& column,
                         const std::string& member) {
        if (member.empty()) {
            return;
        }
        const Range& range = Find(table, column, member);
        where.Between(factColumn, range.first, range.last);
    };
    add("account", "accounts", "code", selection.account);
    if (!selection.summaryLevel.empty()) {
        add("account", "accounts", fmt::format("group{}", selection.summaryLevel.back()),
            selection.summaryMember);
    }
    if (selection.obsLevel == "Cost_Centers") {
        add("cost_centre", "cost_centres", "code", selection.obsMember);
    } else if (!selection.obsLevel.empty()) {
        const char* suffix = selection.cube == ledger::LedgerCube::Days ? "_he" : "";
        add("obs", "obs", fmt::format("level{}_name{}", selection.obsLevel.back(), suffix),
            selection.obsMember);
    }
    add("activity", "activities", "code", selection.activity);
    if (!selection.obsNumber.empty()) { // all numbers share the name
        add("obs_number", "obs_numbers", numberedStructure, selection.obsName + "." + selection.obsNumber);
    }
    add("firm", "firms", "code", selection.firm);
    add("plbs", "plbs", "code", selection.plbs);
    add("rh", "rh", "code", selection.rh);
    add("opening_balance", "opening_balance", "code", selection.openingBalance);
    add("money_set", "money_sets", "code", selection.moneySet);
    const bool isQuantity = selection.measure == "Quantity";
    const std::string sql =
        fmt::format("SELECT sum({}) FROM facts WHERE {}", isQuantity ? "quantity" : "amount", where.sql);
    auto statement = statements_.find(sql);
    if (statement == statements_.end()) {
        statement = statements_.emplace(sql, database_.Prepare(sql)).first;
    }
    return {&statement->second, sql, std::move(where.values), isQuantity ? 1000.0 : 100.0};
}

double SqlitePeer::Run(const SqliteCell& cell) {
    return cell.statement == nullptr ? 0 : BindAndRun(*cell.statement, cell);
}

double SqlitePeer::RunText(const SqliteCell& cell) {
    if (cell.statement == nullptr) {
        return 0;
    }
    ledger::SqlStatement statement = database_.Prepare(cell.sql);
    return BindAndRun(statement, cell);
}

} // namespace qel::bench
