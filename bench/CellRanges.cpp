#include "bench/CellRanges.h"

#include "examples/ledger/reference/PlainSums.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace qel::bench {
namespace {

/// "2024-03-31" is 20240331.
std::int64_t DayNumber(std::string iso) {
    iso.erase(std::remove(iso.begin(), iso.end(), '-'), iso.end());
    return std::stoll(iso);
}

CalendarDay ToCalendar(const std::string& iso) {
    const std::int64_t day = DayNumber(iso);
    return {static_cast<int>(day / 10000), static_cast<int>(day / 100 % 100), static_cast<int>(day % 100)};
}

constexpr const char* numberedStructure = "obs_name || '.' || obs_number";

} // namespace

RangeFinder::RangeFinder(ledger::SqlDatabase& database)
    : first_(ToCalendar(database.Text("SELECT min(date) FROM ledger"))),
      last_(ToCalendar(database.Text("SELECT max(date) FROM ledger"))) {
    for (const char* table :
         {"accounts", "activities", "cost_centres", "firms", "plbs", "rh", "opening_balance", "money_sets"}) {
        Read(database, table, "code");
    }
    for (const char* column : {"group1", "group2", "group3"}) {
        Read(database, "accounts", column);
    }
    for (const char* level : {"level1", "level2", "level3", "level4"}) {
        Read(database, "obs", fmt::format("{}_name", level));
        Read(database, "obs", fmt::format("{}_name_he", level));
    }
    Read(database, "obs_numbers", numberedStructure);
}

void RangeFinder::Read(ledger::SqlDatabase& database, const std::string& table, const std::string& member) {
    ledger::SqlStatement rows = database.Prepare(
        fmt::format("SELECT {1}, min(rowid), max(rowid), count(*) FROM {0} GROUP BY 1", table, member));
    auto& lines = lines_[table + "." + member];
    while (rows.Step()) {
        const Lines range{rows.Number(1), rows.Number(2)};
        if (rows.Number(3) != range.last - range.first + 1) {
            throw std::runtime_error(fmt::format("{} of {} is no range of lines.", rows.Text(0), table));
        }
        lines[rows.Text(0)] = range;
    }
}

std::optional<CellRanges> RangeFinder::Find(const ledger::Selection& selection) const {
    const std::optional<ledger::DaySpan> days = CoveredDays(selection, first_, last_);
    if (!days) {
        return std::nullopt;
    }
    CellRanges cell{{{"day", DayNumber(days->first), DayNumber(days->second)}},
                    selection.measure == "Quantity"};
    const auto add = [&](const char* factColumn, const char* table, const std::string& column,
                         const std::string& member) {
        if (!member.empty()) {
            const Lines& range = lines_.at(fmt::format("{}.{}", table, column)).at(member);
            cell.where.push_back({factColumn, range.first, range.last});
        }
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
    return cell;
}

} // namespace qel::bench
