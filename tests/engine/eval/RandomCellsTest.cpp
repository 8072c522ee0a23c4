#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace qel::engine {
namespace {

/// A member, and the ledger lines it stands for, computed without the engine.
struct Choice {
    std::string path;
    std::function<bool(const LedgerLine&)> takes;
};
using Choices = std::vector<Choice>;

bool Is(const char* left, std::string_view right) { return left == right; }

const LedgerAccount& AccountOf(const LedgerLine& line) {
    for (const LedgerAccount& account : ledgerAccounts) {
        if (Is(line.account, account.code)) {
            return account;
        }
    }
    throw std::logic_error("no such account");
}

const LedgerObs& ObsOf(const LedgerLine& line) {
    for (const LedgerObs& obs : ledgerObs) {
        if (Is(line.obs, obs.code)) {
            return obs;
        }
    }
    throw std::logic_error("no such OBS leaf");
}

bool HasNumber(const LedgerLine& line, std::string_view name, std::string_view number) {
    for (const LedgerObsNumber& known : ledgerObsNumbers) {
        if (Is(line.obsNumber, known.code) && known.name == name &&
            (number.empty() || known.number == number)) {
            return true;
        }
    }
    return false;
}

constexpr const char* monthKeys[] = {"2023-01", "2023-02", "2023-05", "2023-12",
                                     "2024-01", "2024-03", "2024-11"};

/// One list per hierarchy. The first choice of each restricts nothing.
std::vector<Choices> AllChoices() {
    const auto all = [](const LedgerLine&) { return true; };
    std::vector<Choices> hierarchies(9);
    const char* const names[] = {"[Accounts].[AccountCodes]",
                                 "[SuperSumery].[SumeryCode]",
                                 "[SuperSumery].[SumeryName]",
                                 "[OBS]",
                                 "[ActX].[OBSx]",
                                 "[Date]",
                                 "[Firma]",
                                 "[Cost_Centers]",
                                 "[Activities]"};
    for (std::size_t i = 0; i < hierarchies.size(); ++i) {
        hierarchies[i].push_back({names[i], all});
    }
    for (const LedgerAccount& a : ledgerAccounts) {
        hierarchies[0].push_back({fmt::format("[Accounts].[AccountCodes].[All].[{}]", a.code),
                                  [&a](const LedgerLine& l) { return Is(l.account, a.code); }});
        hierarchies[1].push_back({fmt::format("[SuperSumery].[SumeryCode].[SuperSum1].[{}]", a.group1),
                                  [&a](const LedgerLine& l) { return Is(AccountOf(l).group1, a.group1); }});
        hierarchies[1].push_back({fmt::format("[SuperSumery].[SumeryCode].[SuperSum2].[{}]", a.group2),
                                  [&a](const LedgerLine& l) { return Is(AccountOf(l).group2, a.group2); }});
        hierarchies[2].push_back(
            {fmt::format("[SuperSumery].[SumeryName].[{}].[{}]", a.group1Name, a.group2Name),
             [&a](const LedgerLine& l) { return Is(AccountOf(l).group2, a.group2); }});
    }
    for (const LedgerObs& o : ledgerObs) {
        hierarchies[3].push_back({fmt::format("[OBS].[Level1].[{}]", o.level1),
                                  [&o](const LedgerLine& l) { return Is(ObsOf(l).level1, o.level1); }});
        hierarchies[3].push_back({fmt::format("[OBS].[{}].[{}]", o.level1, o.level2),
                                  [&o](const LedgerLine& l) { return Is(l.obs, o.code); }});
    }
    for (const LedgerObsNumber& n : ledgerObsNumbers) {
        hierarchies[4].push_back({fmt::format("[ActX].[OBSx].[All].[{}]", n.name),
                                  [&n](const LedgerLine& l) { return HasNumber(l, n.name, ""); }});
        hierarchies[4].push_back({fmt::format("[ActX].[OBSx].[All].[{}].[{}]", n.name, n.number),
                                  [&n](const LedgerLine& l) { return HasNumber(l, n.name, n.number); }});
    }
    for (const char* month : monthKeys) {
        const std::string year(month, 4);
        const int number = std::stoi(month + 5);
        const int quarter = (number + 2) / 3;
        hierarchies[5].push_back({fmt::format("[Date].[{}].[Q{}].[{}]", year, quarter, number),
                                  [month](const LedgerLine& l) { return Is(l.month, month); }});
        hierarchies[5].push_back({fmt::format("[Date].[{}].[Q{}]", year, quarter), [=](const LedgerLine& l) {
                                      return year == std::string(l.month, 4) &&
                                             (std::stoi(l.month + 5) + 2) / 3 == quarter;
                                  }});
        hierarchies[5].push_back({fmt::format("[Date].[{}]", year),
                                  [=](const LedgerLine& l) { return year == std::string(l.month, 4); }});
    }
    for (const char* firm : ledgerFirms) {
        hierarchies[6].push_back(
            {fmt::format("[Firma].[{}]", firm), [firm](const LedgerLine& l) { return Is(l.firm, firm); }});
    }
    for (const char* centre : ledgerCostCentres) {
        hierarchies[7].push_back({fmt::format("[Cost_Centers].[All].[{}]", centre),
                                  [centre](const LedgerLine& l) { return Is(l.costCentre, centre); }});
    }
    for (const char* activity : ledgerActivities) {
        hierarchies[8].push_back({fmt::format("[Activities].[ActivityCodes].[ActivityCode].[{}]", activity),
                                  [activity](const LedgerLine& l) { return Is(l.activity, activity); }});
    }
    return hierarchies;
}

class RandomCells : public testing::Test {
protected:
    std::size_t Below(std::size_t bound) { return random_() % bound; }
    template <class T, std::size_t Count>
    T Pick(const T (&values)[Count]) {
        return values[Below(Count)];
    }
    std::vector<LedgerLine> RandomLines(std::size_t count) {
        std::vector<LedgerLine> lines;
        for (std::size_t i = 0; i < count; ++i) {
            lines.push_back({Pick(monthKeys), ledgerAccounts[Below(std::size(ledgerAccounts))].code,
                             ledgerObs[Below(std::size(ledgerObs))].code, ledgerObsNumbers[1 + Below(3)].code,
                             Pick(ledgerCostCentres), Pick(ledgerActivities), Pick(ledgerFirms),
                             static_cast<std::int64_t>(Below(2'000'001)) - 1'000'000});
        }
        return lines;
    }

    std::mt19937 random_{20240131};
};

/// The expected result: the sum over the lines, each counted as often as the set's members include it.
std::string Expected(const std::vector<LedgerLine>& lines, const std::vector<const Choice*>& slicer,
                     const std::vector<const Choice*>& summed) {
    std::int64_t cents = 0;
    bool any = false;
    for (const LedgerLine& line : lines) {
        std::int64_t times = 0;
        for (const Choice* choice : summed) {
            times += choice->takes(line) ? 1 : 0;
        }
        for (const Choice* choice : slicer) {
            times = choice->takes(line) ? times : 0;
        }
        cents += times * line.cents;
        any = any || times > 0;
    }
    return any ? fmt::format("{}", static_cast<double>(cents) / 100) : "-";
}

TEST_F(RandomCells, AreTheSumsOfTheirLines) {
    // Few lines leave cells empty; several thousand fill more than one block of a scan.
    for (const std::size_t count : {std::size_t{40}, std::size_t{6000}}) {
        const std::vector<LedgerLine> lines = RandomLines(count);
        const std::shared_ptr<const Cube> cube = BuildLedgerCube(lines);
        const std::vector<Choices> hierarchies = AllChoices();
        for (int round = 0; round < 600; ++round) {
            const std::size_t summedHierarchy = Below(hierarchies.size());
            std::vector<const Choice*> slicer;
            std::vector<const Choice*> summed;
            std::string tuple = "[Measures].[Sum]";
            for (std::size_t i = 0; i < hierarchies.size(); ++i) {
                if (i != summedHierarchy && Below(3) == 0) {
                    slicer.push_back(&hierarchies[i][Below(hierarchies[i].size())]);
                    tuple += ", " + slicer.back()->path;
                }
            }
            std::string set;
            for (std::size_t members = 1 + Below(3); members > 0; --members) {
                summed.push_back(&hierarchies[summedHierarchy][Below(hierarchies[summedHierarchy].size())]);
                set += (set.empty() ? "" : ", ") + summed.back()->path;
            }
            for (std::size_t quote = set.find('\''); quote != std::string::npos;
                 quote = set.find('\'', quote + 2)) {
                set.insert(quote, "'");
            }
            const std::string statement = fmt::format("WITH MEMBER [Measures].[Sum] AS 'Sum({{ {} }}, "
                                                      "[Measures].[Amount])' SELECT FROM Finance WHERE ({})",
                                                      set, tuple);
            ASSERT_EQ(Show(RunStatement(*cube, statement)), Expected(lines, slicer, summed)) << statement;
        }
    }
}

TEST_F(RandomCells, AreNotEmptyOnlyWhereALineIs) {
    const std::vector<LedgerLine> lines = RandomLines(60);
    const std::shared_ptr<const Cube> cube = BuildLedgerCube(lines);
    const std::vector<Choices> hierarchies = AllChoices();
    for (int round = 0; round < 200; ++round) {
        const std::size_t first = Below(hierarchies.size());
        const std::size_t second = (first + 1 + Below(hierarchies.size() - 1)) % hierarchies.size();
        const std::size_t sliced = (second + 1) % hierarchies.size() == first
                                       ? (second + 2) % hierarchies.size()
                                       : (second + 1) % hierarchies.size();
        const Choice& slicer = hierarchies[sliced][Below(hierarchies[sliced].size())];
        std::string axis;
        std::size_t expected = 0;
        for (int i = 0; i < 6; ++i) {
            const Choice& a = hierarchies[first][Below(hierarchies[first].size())];
            const Choice& b = hierarchies[second][Below(hierarchies[second].size())];
            axis += fmt::format("{}({}, {})", i > 0 ? ", " : "", a.path, b.path);
            expected += Expected(lines, {&a, &b}, {&slicer}) == "-" ? 0U : 1U;
        }
        const std::string statement =
            fmt::format("SELECT {{[Measures].[Lines]}} ON 0, NON EMPTY {{{}}} ON 1 FROM Finance WHERE {}",
                        axis, slicer.path);
        ASSERT_EQ(RunStatement(*cube, statement).PositionCount(1), expected) << statement;
    }
}

} // namespace
} // namespace qel::engine
