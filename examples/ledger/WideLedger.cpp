#include "examples/ledger/WideLedger.h"

#include "examples/ledger/Random.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string>

namespace qel::ledger {
namespace {

constexpr std::chrono::sys_days firstDay =
    std::chrono::year{WideLedger::firstYear} / std::chrono::January / 1;
constexpr std::uint64_t chartSeed = 5; // the tables do not depend on the seed of the lines

std::vector<std::string> Numbered(std::size_t count, std::size_t first) {
    std::vector<std::string> codes;
    codes.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        codes.push_back(std::to_string(first + i));
    }
    return codes;
}

void Shuffle(Random& random, std::vector<std::size_t>& numbers) {
    for (std::size_t i = numbers.size(); i > 1; --i) {
        std::swap(numbers[i - 1], numbers[random.Below(i)]);
    }
}

std::vector<std::size_t> ZeroTo(std::size_t count) {
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    return numbers;
}

/// Draws from 0 to count - 1, the n-th most frequent with weight n^-exponent. The frequent ones are spread
/// over the whole range.
class PowerLaw {
public:
    PowerLaw(Random& random, std::size_t count, double exponent) : places_(ZeroTo(count)) {
        Shuffle(random, places_);
        std::uint64_t sum = 0;
        for (std::size_t rank = 1; rank <= count; ++rank) {
            sum += static_cast<std::uint64_t>(std::llround(1e9 * std::pow(rank, -exponent)));
            sums_.push_back(sum);
        }
    }

    std::size_t Draw(Random& random) const {
        const std::uint64_t point = random.Below(sums_.back());
        return places_[static_cast<std::size_t>(std::upper_bound(sums_.begin(), sums_.end(), point) -
                                                sums_.begin())];
    }

private:
    std::vector<std::size_t> places_;
    std::vector<std::uint64_t> sums_;
};

/// Three levels of groups over a row of leaves, with uneven sizes like a chart that has grown.
class Groups {
public:
    static constexpr std::size_t levels = 3;

    /// `groups` gives the number of groups per level, the widest groups first.
    Groups(Random& random, std::size_t leaves, std::array<std::size_t, levels> groups) {
        std::vector<std::size_t> places = ZeroTo(leaves);
        for (std::size_t level = levels; level-- > 0;) {
            places = Some(random, std::move(places), std::clamp<std::size_t>(groups[level], 1, leaves));
            firsts_[level] = places;
        }
    }

    /// Numbers groups across all levels, starting with 1 for the first group of the widest level.
    std::size_t NumberOf(std::size_t level, std::size_t leaf) const {
        std::size_t number = 0;
        for (std::size_t wider = 0; wider < level; ++wider) {
            number += firsts_[wider].size();
        }
        const auto& firsts = firsts_[level];
        return number + static_cast<std::size_t>(std::upper_bound(firsts.begin(), firsts.end(), leaf) -
                                                 firsts.begin());
    }

private:
    /// Chooses that many positions, in order, always including the first.
    static std::vector<std::size_t> Some(Random& random, std::vector<std::size_t> places, std::size_t count) {
        std::vector<std::size_t> others(places.begin() + 1, places.end());
        Shuffle(random, others);
        places.resize(1);
        places.insert(places.end(), others.begin(),
                      others.begin() + static_cast<std::ptrdiff_t>(std::min(count - 1, others.size())));
        std::sort(places.begin(), places.end());
        return places;
    }

    std::array<std::vector<std::size_t>, levels> firsts_; ///< the first leaf of each group
};

Groups AccountGroups(std::size_t accounts) {
    Random random(chartSeed);
    return {random, accounts, {accounts / 500, accounts / 50, accounts / 10}};
}

Groups ObsGroups(std::size_t leaves) {
    Random random(chartSeed + 1);
    return {random, leaves, {leaves / 400, leaves / 80, leaves / 10}};
}

DimensionTable CodesAndNames(std::string file, const std::vector<std::string>& codes, std::string_view name,
                             std::string_view hebrewName) {
    DimensionTable table{std::move(file), {"code", "name", "name_he"}, {}};
    for (const std::string& code : codes) {
        table.rows.push_back(
            {code, fmt::format("{} {}", name, code), fmt::format("{} {}", hebrewName, code)});
    }
    return table;
}

/// The frequencies of members and their correlations: a few accounts have most of the lines, an account has
/// its usual activities, a cost centre its firm and its usual OBS leaves.
class Habits {
public:
    Habits(Random& random, const WideLedgerShape& shape)
        : accounts_(random, shape.accounts, 1), activities_(random, shape.activities, 0.8),
          costCentres_(random, shape.costCentres, 0.6), obs_(random, shape.obsLeaves, 0.5),
          firms_(random, shape.firms, 1.2), plbs_(random, shape.plbs, 1.5),
          moneySets_(random, shape.moneySets, 2.5), obsNumbers_(shape.obsNumbers) {
        for (std::size_t account = 0; account < shape.accounts; ++account) {
            auto& own = activitiesOf_.emplace_back();
            std::generate(own.begin(), own.end(), [&] { return activities_.Draw(random); });
        }
        for (std::size_t centre = 0; centre < shape.costCentres; ++centre) {
            auto& own = obsOf_.emplace_back();
            std::generate(own.begin(), own.end(), [&] { return random.Below(shape.obsLeaves); });
            firmOf_.push_back(firms_.Draw(random));
        }
        for (std::size_t leaf = 0; leaf < shape.obsLeaves; ++leaf) {
            numberOf_.push_back(random.Below(obsNumbers_));
        }
    }

    /// The row numbers of a line's members in their tables.
    struct Members {
        std::size_t account, activity, costCentre, obs, obsNumber, plbs, moneySet;
    };

    std::size_t DrawFirm(Random& random) const { return firms_.Draw(random); }

    Members DrawLine(Random& random, std::size_t firm) const {
        Members line{};
        line.account = accounts_.Draw(random);
        line.activity = IsUsual(random) ? activitiesOf_[line.account][random.Below(usualActivities)]
                                        : activities_.Draw(random);
        line.costCentre = DrawCentre(random, firm);
        line.obs = IsUsual(random) ? obsOf_[line.costCentre][random.Below(usualLeaves)] : obs_.Draw(random);
        line.obsNumber = IsUsual(random) ? numberOf_[line.obs] : random.Below(obsNumbers_);
        line.plbs = plbs_.Draw(random);
        line.moneySet = moneySets_.Draw(random);
        return line;
    }

private:
    static constexpr std::size_t usualActivities = 12, usualLeaves = 7;

    static bool IsUsual(Random& random) { return random.Below(10) != 0; }

    std::size_t DrawCentre(Random& random, std::size_t firm) const {
        std::size_t centre = costCentres_.Draw(random);
        if (IsUsual(random)) {
            constexpr int tries = 100; // a small firm may have no cost centre
            for (int i = 0; i < tries && firmOf_[centre] != firm; ++i) {
                centre = costCentres_.Draw(random);
            }
        }
        return centre;
    }

    PowerLaw accounts_, activities_, costCentres_, obs_, firms_, plbs_, moneySets_;
    std::size_t obsNumbers_;
    std::vector<std::array<std::size_t, usualActivities>> activitiesOf_; ///< by account
    std::vector<std::array<std::size_t, usualLeaves>> obsOf_;            ///< by cost centre
    std::vector<std::size_t> firmOf_, numberOf_;                         ///< by cost centre, by OBS leaf
};

/// Draws amounts in cents whose numbers of binary digits are uniformly distributed.
std::int64_t DrawAmount(Random& random) {
    const std::int64_t amount = random.Between(1, std::int64_t{1} << random.Between(4, 19));
    return random.Below(2) == 0 ? amount : -amount;
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
    const Habits habits(random, shape_);
    const std::chrono::sys_days end =
        std::chrono::year_month_day(firstDay) + std::chrono::months{static_cast<int>(shape_.months)};
    const auto days = static_cast<std::uint64_t>((end - firstDay).count());
    std::uint64_t written = 0;
    for (std::uint64_t entry = 1; written < shape_.rows; ++entry) {
        LedgerLine line;
        line.entry = entry;
        line.date = firstDay + std::chrono::days{static_cast<int>(written * days / shape_.rows)};
        const bool beginsMonth = line.date.day() == std::chrono::day{1};
        line.openingBalance = beginsMonth && random.Below(10) != 0 ? "1" : "0";
        const std::size_t firm = habits.DrawFirm(random);
        line.firm = codes_->firms[firm];
        const std::int64_t amount = DrawAmount(random);
        for (const std::int64_t cents : {amount, -amount}) {
            const Habits::Members members = habits.DrawLine(random, firm);
            line.account = codes_->accounts[members.account];
            line.plbs = codes_->plbs[members.plbs];
            line.rh = random.Below(10) < 7 ? "R" : "H";
            line.moneySet = codes_->moneySets[members.moneySet];
            line.analysis = {codes_->activities[members.activity], codes_->costCentres[members.costCentre],
                             codes_->obs[members.obs], codes_->obsNumbers[members.obsNumber]};
            line.cents = cents;
            line.thousandths = random.Between(-20, 179) * 1000;
            sink(line);
            ++written;
        }
    }
}

std::vector<DimensionTable> WideLedger::Tables() const {
    DimensionTable accounts{"accounts.csv",
                            {"code", "name", "name_he", "kind", "group1", "group1_name", "group1_name_he",
                             "group2", "group2_name", "group2_name_he", "group3", "group3_name",
                             "group3_name_he"},
                            {}};
    const Groups accountGroups = AccountGroups(codes_->accounts.size());
    for (std::size_t i = 0; i < codes_->accounts.size(); ++i) {
        const std::string& code = codes_->accounts[i];
        std::vector<std::string> row{code, "Account " + code, "חשבון " + code, i % 2 == 0 ? "A" : "L"};
        for (std::size_t level = 0; level < Groups::levels; ++level) {
            const std::size_t group = accountGroups.NumberOf(level, i);
            row.insert(row.end(), {std::to_string(group), fmt::format("Group {}", group),
                                   fmt::format("קבוצה {}", group)});
        }
        accounts.rows.push_back(std::move(row));
    }
    DimensionTable obs{"obs.csv",
                       {"code", "level1", "level1_name", "level1_name_he", "level2", "level2_name",
                        "level2_name_he", "level3", "level3_name", "level3_name_he", "level4_name",
                        "level4_name_he"},
                       {}};
    const Groups obsGroups = ObsGroups(codes_->obs.size());
    for (std::size_t i = 0; i < codes_->obs.size(); ++i) {
        std::vector<std::string> row{codes_->obs[i]};
        for (std::size_t level = 0; level < Groups::levels; ++level) {
            static constexpr std::array<std::array<const char*, 2>, Groups::levels> names{
                {{"Region", "אזור"}, {"Unit", "יחידה"}, {"Department", "מחלקה"}}};
            const std::size_t group = obsGroups.NumberOf(level, i);
            row.insert(row.end(), {std::to_string(group), fmt::format("{} {}", names[level][0], group),
                                   fmt::format("{} {}", names[level][1], group)});
        }
        row.insert(row.end(), {"Site " + row[0], "אתר " + row[0]});
        obs.rows.push_back(std::move(row));
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
