#include "bench/ScanPeer.h"

#include "examples/ledger/WideLedger.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace qel::bench {
namespace {

using ledger::LedgerLine;

/// A column of the ledger, the table of its codes, and where a line has the code.
struct KeyColumn {
    const char *name, *table;
    std::string_view (*code)(const LedgerLine&);
};

constexpr std::array keyColumns{
    KeyColumn{"account", "accounts.csv", [](const LedgerLine& line) { return line.account; }},
    KeyColumn{"activity", "activities.csv", [](const LedgerLine& line) { return line.analysis.activity; }},
    KeyColumn{"cost_centre", "cost_centres.csv",
              [](const LedgerLine& line) { return line.analysis.costCentre; }},
    KeyColumn{"obs", "obs.csv", [](const LedgerLine& line) { return line.analysis.obs; }},
    KeyColumn{"obs_number", "obs_numbers.csv",
              [](const LedgerLine& line) { return line.analysis.obsNumber; }},
    KeyColumn{"firm", "firms.csv", [](const LedgerLine& line) { return line.firm; }},
    KeyColumn{"plbs", "plbs.csv", [](const LedgerLine& line) { return line.plbs; }},
    KeyColumn{"rh", "rh.csv", [](const LedgerLine& line) { return line.rh; }},
    KeyColumn{"opening_balance", "opening_balance.csv",
              [](const LedgerLine& line) { return line.openingBalance; }},
    KeyColumn{"money_set", "money_sets.csv", [](const LedgerLine& line) { return line.moneySet; }},
};

using LineOfCode = std::unordered_map<std::string_view, std::uint16_t>;

/// The tables' lines count from 1, as in SQLite.
LineOfCode LinesOf(const std::vector<ledger::DimensionTable>& tables, std::string_view file) {
    const auto table =
        std::find_if(tables.begin(), tables.end(), [&](const auto& each) { return each.file == file; });
    if (table == tables.end()) {
        throw std::runtime_error("The ledger has no table " + std::string(file));
    }
    LineOfCode lines;
    for (const std::vector<std::string>& row : table->rows) {
        lines.emplace(row.front(), static_cast<std::uint16_t>(lines.size() + 1));
    }
    return lines;
}

constexpr std::chrono::sys_days firstDay =
    std::chrono::year{ledger::WideLedger::firstYear} / std::chrono::January / 1;

std::uint16_t DayCode(std::chrono::sys_days day) {
    return static_cast<std::uint16_t>((day - firstDay).count());
}

/// `date` is written as 20240331; every month may end with its 31st.
std::uint16_t DayCodeOf(std::int64_t date) {
    const auto month = std::chrono::year{static_cast<int>(date / 10000)} /
                       std::chrono::month{static_cast<unsigned>(date / 100 % 100)};
    const std::chrono::year_month_day day = month / std::chrono::day{static_cast<unsigned>(date % 100)};
    return DayCode(std::max(std::chrono::sys_days(day.ok() ? day : month / std::chrono::last), firstDay));
}

} // namespace

ScanPeer::ScanPeer(std::uint64_t rows, std::uint64_t seed) {
    const ledger::WideLedger wide({.rows = rows});
    const std::vector<ledger::DimensionTable> tables = wide.Tables();
    struct Filled {
        const KeyColumn& column;
        LineOfCode lines;
        Codes& codes;
    };
    std::vector<Filled> filled;
    filled.reserve(keyColumns.size());
    for (const KeyColumn& column : keyColumns) {
        filled.push_back({column, LinesOf(tables, column.table), keys_[column.name]});
    }
    const auto expected = static_cast<std::size_t>(rows) + 2; // the last entry is completed
    days_.reserve(expected);
    cents_.reserve(expected);
    thousandths_.reserve(expected);
    for (auto& [name, codes] : keys_) {
        codes.reserve(expected);
    }
    wide.Generate(seed, [&](const LedgerLine& line) {
        days_.push_back(DayCode(std::chrono::sys_days(line.date)));
        for (Filled& each : filled) {
            each.codes.push_back(each.lines.at(each.column.code(line)));
        }
        cents_.push_back(static_cast<std::int32_t>(line.cents));
        thousandths_.push_back(static_cast<std::int32_t>(line.thousandths));
    });
}

double ScanPeer::Run(const CellRanges& cell) const {
    const auto begin = std::lower_bound(days_.begin(), days_.end(), DayCodeOf(cell.where.front().first));
    const auto end = std::upper_bound(begin, days_.end(), DayCodeOf(cell.where.front().last));
    std::vector<Condition> where;
    for (std::size_t i = 1; i < cell.where.size(); ++i) {
        const FactRange& range = cell.where[i];
        where.push_back({&keys_.at(range.column), static_cast<std::uint16_t>(range.first),
                         static_cast<std::uint16_t>(range.last)});
    }
    return cell.ValueOf(SumOf(where, cell.isQuantity ? thousandths_ : cents_,
                              static_cast<std::size_t>(begin - days_.begin()),
                              static_cast<std::size_t>(end - days_.begin())));
}

std::int64_t ScanPeer::SumOf(const std::vector<Condition>& where, const std::vector<std::int32_t>& values,
                             std::size_t begin, std::size_t end) const {
    constexpr std::size_t block = 4096; // stays in the first cache
    std::array<std::int32_t, block> masks{};
    std::int64_t sum = 0;
    for (; begin < end; begin += block) {
        const std::size_t count = std::min(block, end - begin);
        masks.fill(-1);
        for (const Condition& condition : where) {
            const std::uint16_t* const codes = condition.codes->data() + begin;
            const int width = condition.last - condition.first;
            for (std::size_t i = 0; i < count; ++i) {
                const auto above = static_cast<std::uint16_t>(codes[i] - condition.first);
                masks[i] &= above <= width ? -1 : 0;
            }
        }
        for (std::size_t i = 0; i < count; ++i) {
            sum += values[begin + i] & masks[i];
        }
    }
    return sum;
}

} // namespace qel::bench
