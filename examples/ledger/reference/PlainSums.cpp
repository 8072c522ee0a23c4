#include "examples/ledger/reference/PlainSums.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace qel::ledger {
namespace {

bool Before(const CalendarDay& a, const CalendarDay& b) {
    return std::tie(a.year, a.month, a.day) < std::tie(b.year, b.month, b.day);
}

std::string Iso(const CalendarDay& day) {
    return fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
}

CalendarDay FromIso(const std::string& text) {
    return {std::stoi(text.substr(0, 4)), std::stoi(text.substr(5, 2)), std::stoi(text.substr(8, 2))};
}

CalendarDay NextMonth(const CalendarDay& day) {
    return day.month == 12 ? CalendarDay{day.year + 1, 1, 1} : CalendarDay{day.year, day.month + 1, 1};
}

/// "2024-02-99", which sorts after every day of the month and before the next month.
std::string AfterMonth(const CalendarDay& day) { return fmt::format("{:04}-{:02}-99", day.year, day.month); }

/// A condition on the ledger's lines with its parameter values.
struct Conditions {
    std::string sql = "1";
    std::vector<std::string> values;

    void Add(const std::string& condition, const std::vector<std::string>& parameters) {
        sql += " AND " + condition;
        values.insert(values.end(), parameters.begin(), parameters.end());
    }

    void Equal(const char* column, const std::string& value) {
        if (!value.empty()) {
            Add(fmt::format("{} = ?", column), {value});
        }
    }
};

void AddObsLevel(Conditions& where, const Selection& selection) {
    if (selection.obsLevel.empty()) {
        return;
    }
    if (selection.obsLevel == "Cost_Centers") {
        where.Equal("cost_centre", selection.obsMember);
        return;
    }
    const char* suffix = selection.cube == LedgerCube::Days ? "_he" : "";
    where.Add(fmt::format("obs IN (SELECT code FROM obs WHERE level{}_name{} = ? COLLATE NOCASE)",
                          selection.obsLevel.back(), suffix),
              {selection.obsMember});
}

Conditions ConditionsOf(const Selection& selection, const DaySpan& days) {
    Conditions where;
    where.Add("date BETWEEN ? AND ?", {days.first, days.second});
    where.Add("obs_number IN (SELECT code FROM obs_numbers WHERE obs_name = ? AND ? IN (obs_number, ''))",
              {selection.obsName, selection.obsNumber});
    AddObsLevel(where, selection);
    if (!selection.summaryLevel.empty()) {
        where.Add(fmt::format("account IN (SELECT code FROM accounts WHERE group{} = ?)",
                              selection.summaryLevel.back()),
                  {selection.summaryMember});
    }
    where.Equal("account", selection.account);
    where.Equal("activity", selection.activity);
    where.Equal("money_set", selection.moneySet);
    where.Equal("plbs", selection.plbs);
    where.Equal("rh", selection.rh);
    where.Equal("firm", selection.firm);
    where.Equal("opening_balance", selection.openingBalance);
    return where;
}

} // namespace

std::optional<DaySpan> CoveredDays(const Selection& selection, const CalendarDay& first,
                                   const CalendarDay& last) {
    const bool months = selection.cube == LedgerCube::Months;
    const CalendarDay cubeStart = months ? CalendarDay{first.year, first.month, 1} : first;
    const CalendarDay cubeEnd = months ? CalendarDay{last.year, last.month, 1} : last;
    CalendarDay from = selection.from.value_or(selection.to), to = selection.to;
    if (Before(to, from) || Before(to, cubeStart) || Before(cubeEnd, from)) {
        return std::nullopt;
    }
    from = Before(from, cubeStart) ? cubeStart : from;
    to = Before(cubeEnd, to) ? cubeEnd : to;
    if (!months) {
        return DaySpan{Iso(from), Iso(to)};
    }
    const CalendarDay firstBegun = from.day == 1 ? from : NextMonth(from);
    const CalendarDay lastMonth{to.year, to.month, 1};
    return DaySpan{Iso(std::min(firstBegun, lastMonth, Before)), AfterMonth(lastMonth)};
}

PlainSums::PlainSums(SqlDatabase& database)
    : database_(database), first_(FromIso(database.Text("SELECT min(date) FROM ledger"))),
      last_(FromIso(database.Text("SELECT max(date) FROM ledger"))) {
    database.Run("CREATE INDEX IF NOT EXISTS ledger_by_account ON ledger (account, date);"
                 "CREATE INDEX IF NOT EXISTS ledger_by_obs ON ledger (obs, date)");
}

std::int64_t PlainSums::Sum(const Selection& selection) {
    const std::optional<DaySpan> days = CoveredDays(selection, first_, last_);
    if (!days) {
        return 0;
    }
    const std::string what = selection.measure == "Lines"    ? "count(*)"
                             : selection.measure == "Amount" ? "sum(amount)"
                                                             : "sum(quantity)";
    const Conditions where = ConditionsOf(selection, *days);
    SqlStatement statement =
        database_.Prepare(fmt::format("SELECT {} FROM ledger WHERE {}", what, where.sql));
    for (std::size_t i = 0; i < where.values.size(); ++i) {
        statement.Bind(static_cast<int>(i) + 1, where.values[i]);
    }
    statement.Step();
    return statement.Number(0);
}

double PlainSums::CellValue(const Selection& selection) {
    const auto sum = static_cast<double>(Sum(selection));
    return selection.measure == "Amount" ? sum / 100 : selection.measure == "Quantity" ? sum / 1000 : sum;
}

} // namespace qel::ledger
