#include "examples/ledger/WideLedger.h"

#include "examples/ledger/Random.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace qel::ledger {
namespace {

constexpr std::chrono::sys_days firstDay = std::chrono::year{2020} / std::chrono::January / 1;

std::vector<std::string> Numbered(std::size_t count, std::size_t first) {
    std::vector<std::string> codes;
    codes.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        codes.push_back(std::to_string(first + i));
    }
    return codes;
}

/// Draws 0 to count - 1, the number n with a weight of 1 / (n + 1). Whole numbers only, so that every
/// machine draws the same.
class Zipf {
public:
    explicit Zipf(std::size_t count) {
        std::uint64_t sum = 0;
        for (std::size_t rank = 1; rank <= count; ++rank) {
            sum += 1'000'000'000ULL / rank;
            sums_.push_back(sum);
        }
    }

    std::size_t Draw(Random& random) const {
        const std::uint64_t point = random.Below(sums_.back());
        return static_cast<std::size_t>(std::upper_bound(sums_.begin(), sums_.end(), point) - sums_.begin());
    }

private:
    std::vector<std::uint64_t> sums_;
};

DimensionTable CodesAndNames(std::string file, const std::vector<std::string>& codes, std::string_view name,
                             std::string_view hebrewName) {
    DimensionTable table{std::move(file), {"code", "name", "name_he"}, {}};
    for (const std::string& code : codes) {
        table.rows.push_back(
            {code, fmt::format("{} {}", name, code), fmt::format("{} {}", hebrewName, code)});
    }
    return table;
}

} // namespace

struct WideLedger::Codes {
    std::vector<std::string> accounts, activities, costCentres, obs, obsNumbers, firms, plbs, moneySets;
};

WideLedger::WideLedger(const WideLedgerShape& shape)
    : shape_(shape), codes_(std::make_unique<Codes>(Codes{
                         .accounts = Numbered(shape.accounts, 10'000),
                         .activities = Numbered(shape.activities, 1'000),
                         .costCentres = Numbered(shape.costCentres, 2'000),
                         .obs = Numbered(shape.obsLeaves, 30'000),
                         .obsNumbers = Numbered(shape.obsNumbers, 1),
                         .firms = Numbered(shape.firms, 1),
                         .plbs = Numbered(shape.plbs, 1),
                         .moneySets = Numbered(shape.moneySets, 1),
                     })) {}

WideLedger::~WideLedger() = default;

void WideLedger::Generate(std::uint64_t seed, const LineSink& sink) const {
    Random random(seed);
    const Zipf ranks(shape_.accounts);
    const std::chrono::sys_days end =
        std::chrono::year_month_day(firstDay) + std::chrono::months{static_cast<int>(shape_.months)};
    const auto days = static_cast<std::uint64_t>((end - firstDay).count());
    const auto pick = [&](const std::vector<std::string>& codes) -> std::string_view {
        return codes[random.Below(codes.size())];
    };
    std::uint64_t written = 0;
    for (std::uint64_t entry = 1; written < shape_.rows; ++entry) {
        LedgerLine line;
        line.entry = entry;
        line.date = firstDay + std::chrono::days{static_cast<int>(written * days / shape_.rows)};
        line.firm = pick(codes_->firms);
        line.moneySet = pick(codes_->moneySets);
        line.rh = random.Below(20) == 0 ? "H" : "R";
        line.openingBalance = random.Below(50) == 0 ? "1" : "0";
        const std::uint64_t lines = 2 + random.Below(5);
        std::int64_t sum = 0;
        for (std::uint64_t i = 0; i < lines; ++i) {
            // 7919 is prime to the usual numbers of accounts: it spreads the busy accounts over the chart.
            const std::size_t account = ranks.Draw(random) * 7919 % shape_.accounts;
            line.account = codes_->accounts[account];
            line.plbs = codes_->plbs[account % shape_.plbs];
            line.analysis = {pick(codes_->activities), pick(codes_->costCentres), pick(codes_->obs),
                             pick(codes_->obsNumbers)};
            line.cents = i + 1 == lines ? -sum : random.Between(-9'999'99, 9'999'99);
            line.thousandths = random.Between(-50, 50) * 1000;
            sum += line.cents;
            sink(line);
        }
        written += lines;
    }
}

std::vector<DimensionTable> WideLedger::Tables() const {
    DimensionTable accounts{"accounts.csv",
                            {"code", "name", "name_he", "kind", "group1", "group1_name", "group1_name_he",
                             "group2", "group2_name", "group2_name_he", "group3", "group3_name",
                             "group3_name_he"},
                            {}};
    for (std::size_t i = 0; i < codes_->accounts.size(); ++i) {
        const std::string& code = codes_->accounts[i];
        std::vector<std::string> row{code, "Account " + code, "חשבון " + code, i % 2 == 0 ? "A" : "L"};
        // Eight large groups of ten groups of ten.
        const std::size_t group3 = i * 800 / codes_->accounts.size();
        for (const std::size_t group : {1 + group3 / 100, 10 + group3 / 10, 100 + group3}) {
            row.insert(row.end(), {std::to_string(group), fmt::format("Group {}", group),
                                   fmt::format("קבוצה {}", group)});
        }
        accounts.rows.push_back(std::move(row));
    }
    DimensionTable obs{"obs.csv",
                       {"code", "level1", "level1_name", "level1_name_he", "level2", "level2_name",
                        "level2_name_he", "level3_name", "level3_name_he"},
                       {}};
    for (std::size_t i = 0; i < codes_->obs.size(); ++i) {
        const std::string region = std::to_string(1 + i * 10 / codes_->obs.size());
        // A name of the second level stands under every region.
        const std::string unit = std::to_string(1 + i * 100 / codes_->obs.size() % 10);
        const std::string& code = codes_->obs[i];
        obs.rows.push_back({code, region, "Region " + region, "אזור " + region, unit, "Unit " + unit,
                            "יחידה " + unit, "Site " + code, "אתר " + code});
    }
    DimensionTable numbers{"obs_numbers.csv", {"code", "obs_name", "obs_number", "name", "name_he"}, {}};
    for (const std::string& code : codes_->obsNumbers) {
        numbers.rows.push_back({code, "OBS", code, "Structure " + code, "מבנה " + code});
    }
    return {std::move(accounts),
            CodesAndNames("activities.csv", codes_->activities, "Activity", "פעילות"),
            CodesAndNames("cost_centres.csv", codes_->costCentres, "Cost centre", "מרכז עלות"),
            std::move(obs),
            std::move(numbers),
            CodesAndNames("firms.csv", codes_->firms, "Firm", "חברה"),
            CodesAndNames("plbs.csv", codes_->plbs, "Statement", "דוח"),
            CodesAndNames("rh.csv", {"R", "H"}, "Kind", "סוג"),
            CodesAndNames("opening_balance.csv", {"0", "1"}, "Opening", "פתיחה"),
            CodesAndNames("money_sets.csv", codes_->moneySets, "Money set", "מטבע")};
}

} // namespace qel::ledger
