#include "examples/ledger/reference/RandomSelections.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace qel::ledger {
namespace {

enum LineColumn : std::size_t {
    date,
    firm,
    account,
    activity,
    costCentre,
    obs,
    obsNumber,
    plbs,
    rh,
    opening,
    money
};

/// What a shape restricts, and the line's column with the value.
const std::map<SelectionShape, std::pair<std::string Selection::*, LineColumn>> partsOfOneColumn{
    {SelectionShape::Plbs, {&Selection::plbs, plbs}},
    {SelectionShape::Rh, {&Selection::rh, rh}},
    {SelectionShape::Firm, {&Selection::firm, firm}},
    {SelectionShape::OpeningBalance, {&Selection::openingBalance, opening}},
    {SelectionShape::MoneySet, {&Selection::moneySet, money}},
    {SelectionShape::Activity, {&Selection::activity, activity}},
    {SelectionShape::Account, {&Selection::account, account}}};

std::chrono::sys_days DayOf(const std::string& iso) {
    return std::chrono::year{std::stoi(iso.substr(0, 4))} /
           std::chrono::month{static_cast<unsigned>(std::stoi(iso.substr(5, 2)))} /
           std::chrono::day{static_cast<unsigned>(std::stoi(iso.substr(8, 2)))};
}

CalendarDay ToCalendar(std::chrono::year_month_day day) {
    return {static_cast<int>(day.year()), static_cast<int>(static_cast<unsigned>(day.month())),
            static_cast<int>(static_cast<unsigned>(day.day()))};
}

CalendarDay Shifted(const std::string& isoDay, std::int64_t days) {
    return ToCalendar(DayOf(isoDay) + std::chrono::days{static_cast<int>(days)});
}

CalendarDay MonthEnd(const CalendarDay& day) {
    return ToCalendar(std::chrono::year{day.year} / std::chrono::month{static_cast<unsigned>(day.month)} /
                      std::chrono::last);
}

} // namespace

RandomSelections::RandomSelections(SqlDatabase& database, std::uint64_t seed)
    : database_(database), random_(seed), lineCount_(database.Number("SELECT count(*) FROM ledger")),
      line_(database.Prepare("SELECT date, firm, account, activity, cost_centre, obs, obs_number, plbs, rh, "
                             "opening_balance, money_set FROM ledger WHERE rowid = ?")),
      structures_(database.Prepare(
          "SELECT obs_name, obs_number FROM obs_numbers WHERE code = ? ORDER BY obs_name, obs_number")) {}

RandomSelections::Line RandomSelections::AnyLine() {
    line_.Reset();
    line_.Bind(1, random_.Between(1, lineCount_));
    line_.Step();
    Line line;
    for (std::size_t i = 0; i < line.size(); ++i) {
        line[i] = line_.Text(static_cast<int>(i));
    }
    return line;
}

std::string RandomSelections::Lookup(const std::string& table, const std::string& column,
                                     const std::string& code) {
    SqlStatement statement =
        database_.Prepare(fmt::format("SELECT {} FROM {} WHERE code = ?", column, table));
    statement.Bind(1, code);
    statement.Step();
    return statement.Text(0);
}

RandomSelections::Line RandomSelections::AnyMembers() {
    Line line = AnyLine();
    const auto draw = [&](LineColumn column, const std::string& table) {
        std::vector<std::string>& codes = codes_[table];
        if (codes.empty()) {
            SqlStatement rows = database_.Prepare(fmt::format("SELECT code FROM {} ORDER BY rowid", table));
            while (rows.Step()) {
                codes.push_back(rows.Text(0));
            }
        }
        line[column] = codes[random_.Below(codes.size())];
    };
    draw(account, "accounts");
    draw(activity, "activities");
    draw(costCentre, "cost_centres");
    draw(obs, "obs");
    draw(obsNumber, "obs_numbers");
    return line;
}

Selection RandomSelections::DrawParts(const std::vector<SelectionShape>& parts, Around around,
                                      LedgerCube cube) {
    const Line line = around == Around::Line ? AnyLine() : AnyMembers();
    Selection selection;
    selection.cube = cube;
    DrawStructure(selection, line);
    if (std::find(parts.begin(), parts.end(), SelectionShape::ObsNumber) == parts.end()) {
        selection.obsNumber.clear();
    }
    for (const SelectionShape part : parts) {
        RestrictTo(selection, part, line);
    }
    return selection;
}

Selection RandomSelections::Draw(SelectionShape shape, DateShape dates, LedgerCube cube) {
    const Line line = AnyLine();
    Selection selection;
    selection.cube = cube;
    const std::uint64_t measure = random_.Below(5);
    selection.measure = measure == 0 ? "Quantity" : measure == 1 ? "Lines" : "Amount";
    DrawStructure(selection, line);
    if (random_.Below(8) == 0) {
        selection.obsNumber.clear();
    }
    if (shape != SelectionShape::Several) {
        RestrictTo(selection, shape, random_.Below(20) == 0 ? AnyLine() : line);
    } else {
        for (std::size_t part = 1; part + 1 < selectionShapeCount; ++part) {
            if (random_.Below(3) == 0) {
                RestrictTo(selection, static_cast<SelectionShape>(part),
                           random_.Below(15) == 0 ? AnyLine() : line);
            }
        }
    }
    if (random_.Below(40) == 0) {
        selection.account = "no such account";
    }
    DrawDates(selection, dates, line[date]);
    return selection;
}

void RandomSelections::DrawStructure(Selection& selection, const Line& line) {
    std::vector<std::pair<std::string, std::string>> found;
    structures_.Reset();
    structures_.Bind(1, line[obsNumber]);
    while (structures_.Step()) {
        found.emplace_back(structures_.Text(0), structures_.Text(1));
    }
    const auto& [name, number] = found[random_.Below(found.size())];
    selection.obsName = name;
    selection.obsNumber = number;
}

void RandomSelections::RestrictTo(Selection& selection, SelectionShape shape, const Line& line) {
    const auto obsLevel = [&](char level) {
        selection.obsLevel = fmt::format("Level{}", level);
        selection.obsMember = Lookup(
            "obs", fmt::format("level{}_name{}", level, selection.cube == LedgerCube::Days ? "_he" : ""),
            line[obs]);
    };
    const auto summary = [&](char level) {
        selection.summaryLevel = fmt::format("SuperSum{}", level);
        selection.summaryMember = Lookup("accounts", fmt::format("group{}", level), line[account]);
    };
    switch (shape) {
    case SelectionShape::Nothing:
    case SelectionShape::Several:
    case SelectionShape::ObsNumber: // drawn with the structure
        return;
    case SelectionShape::CostCentre:
        selection.obsLevel = "Cost_Centers";
        selection.obsMember = line[costCentre];
        return;
    case SelectionShape::Level1:
        return obsLevel('1');
    case SelectionShape::Level2:
        return obsLevel('2');
    case SelectionShape::Level3:
        return obsLevel('3');
    case SelectionShape::Level4:
        return obsLevel('4');
    case SelectionShape::SuperSum1:
        return summary('1');
    case SelectionShape::SuperSum2:
        return summary('2');
    case SelectionShape::SuperSum3:
        return summary('3');
    default: {
        const auto& [part, column] = partsOfOneColumn.at(shape);
        selection.*part = line[column];
    }
    }
}

void RandomSelections::DrawDates(Selection& selection, DateShape dates, const std::string& day) {
    const CalendarDay anchor = Shifted(day, 0);
    const CalendarDay before = Shifted(day, -random_.Between(0, 300));
    const CalendarDay after = Shifted(day, random_.Between(0, 300));
    const CalendarDay longAgo{1950 + static_cast<int>(random_.Below(50)), 5, 17};
    const CalendarDay farOff{2050 + static_cast<int>(random_.Below(50)), 2, 28};
    selection.from = before;
    selection.to = after;
    switch (dates) {
    case DateShape::WholeMonths:
        selection.from = CalendarDay{before.year, before.month, 1};
        selection.to = MonthEnd(after);
        break;
    case DateShape::UnevenDays:
        break;
    case DateShape::OpenStart:
        selection.from.reset();
        selection.to = anchor;
        break;
    case DateShape::StartsBeforeTheCube:
        selection.from = longAgo;
        break;
    case DateShape::EndsAfterTheCube:
        selection.to = farOff;
        break;
    case DateShape::OutsideTheCube:
        selection.from = random_.Below(2) == 0 ? longAgo : farOff;
        selection.to = *selection.from;
        break;
    case DateShape::Reversed:
        selection.from = Shifted(day, 400);
        break;
    case DateShape::OneDay:
        selection.from = anchor;
        selection.to = anchor;
        break;
    case DateShape::Everything:
        selection.from = longAgo;
        selection.to = farOff;
        break;
    }
}

} // namespace qel::ledger
