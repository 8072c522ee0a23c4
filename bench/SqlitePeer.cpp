#include "bench/SqlitePeer.h"

#include "examples/ledger/reference/LedgerDatabase.h"

#include <fmt/format.h>

#include <stdexcept>

namespace qel::bench {
namespace {

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

constexpr const char* smallColumns =
    "obs_number, plbs, rh, firm, opening_balance, money_set, amount, quantity";

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
    constexpr std::uint64_t sampled = 100;
    ledger::LoadLedger(csvFolder, database, facts ? 1 : sampled);
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
}

SqliteCell SqlitePeer::Prepare(const std::optional<CellRanges>& cell) {
    if (!cell) {
        return {};
    }
    std::string sql =
        fmt::format("SELECT sum({}) FROM facts WHERE ", cell->isQuantity ? "quantity" : "amount");
    std::vector<std::int64_t> values;
    for (const FactRange& range : cell->where) {
        const bool isOne = range.first == range.last;
        sql += fmt::format("{}{} {}", values.empty() ? "" : " AND ", range.column,
                           isOne ? "= ?" : "BETWEEN ? AND ?");
        values.push_back(range.first);
        if (!isOne) {
            values.push_back(range.last);
        }
    }
    auto statement = statements_.find(sql);
    if (statement == statements_.end()) {
        statement = statements_.emplace(sql, database_.Prepare(sql)).first;
    }
    return {&statement->second, sql, std::move(values), cell->isQuantity ? 1000.0 : 100.0};
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
