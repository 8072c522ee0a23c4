#include "engine/eval/AggregatePlan.h"
#include "engine/eval/FactAccessPlan.h"
#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/EngineError.h"
#include "qel/engine/PlanCache.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <random>

namespace qel::engine {
namespace {

using test::TemporaryFolder;

/// A fact by the codes of its columns: account, region, number, firm, kind, day.
struct Fact {
    std::array<std::uint32_t, 6> codes;
    std::array<std::int64_t, 2> amounts; ///< sums of the second need more than 32 bits
};

constexpr std::array<std::uint32_t, 6> codeCounts{300, 100, 20, 8, 4, 10'957};
constexpr const char* columns[] = {"account", "region", "number", "firm", "kind", "date"};
constexpr std::size_t region = 1, day = 5;
/// Regions form ten units of ten; every name belongs to two units.
constexpr std::uint32_t unitSize = 10, namesOfUnits = 5;

/// Thirty years of days; the months fill several blocks.
std::chrono::year_month_day CalendarDay(std::uint32_t dayNumber) {
    return std::chrono::sys_days(std::chrono::year{1995} / 1 / 1) +
           std::chrono::days{static_cast<int>(dayNumber)};
}

std::string DateOf(std::uint32_t dayNumber) {
    const std::chrono::year_month_day date = CalendarDay(dayNumber);
    return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string MemberOfDay(std::uint32_t dayNumber) {
    const std::chrono::year_month_day date = CalendarDay(dayNumber);
    const auto month = static_cast<unsigned>(date.month());
    return fmt::format("[Date].[All].[{}].[Q{}].[{}].[{}]", static_cast<int>(date.year()), (month + 2) / 3,
                       month, static_cast<unsigned>(date.day()));
}

bool Holds(CodeRanges ranges, std::uint32_t code) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](KeyRange range) { return code >= range.first && code < range.last; });
}

/// A cube by days, large enough for both kinds of aggregates, and its facts.
class AggregateTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        std::mt19937_64 random(11);
        std::string csv = "account,region,number,firm,kind,date,amount,wide\n";
        for (std::uint32_t i = 0; i < 40'000; ++i) {
            Fact fact{};
            for (std::size_t column = 0; column < codeCounts.size(); ++column) {
                // Every code occurs; low account numbers have most of the facts.
                const auto drawn = static_cast<std::uint32_t>(random() % codeCounts[column]);
                fact.codes[column] = i < codeCounts[column] ? i
                                     : column == 0 ? static_cast<std::uint32_t>(random() % (drawn + 1))
                                                   : drawn;
            }
            // Zero amounts distinguish an empty sum from a sum of 0.
            fact.amounts = {i % 2 == 0 ? 0 : static_cast<std::int64_t>(random() % 20'001) - 10'000,
                            static_cast<std::int64_t>(random() % 4'000'000'000)};
            const auto& c = fact.codes;
            csv += fmt::format("{:03},{:03},{:02},{},{},{},{},{}\n", c[0], c[1], c[2], c[3], c[4],
                               DateOf(c[5]), fact.amounts[0], fact.amounts[1]);
            facts_.push_back(fact);
        }
        folder_ = std::make_unique<TemporaryFolder>();
        folder_->Write("facts.csv", csv);
        WriteTree("accounts.csv", codeCounts[0], 100, 10);
        WriteTree("regions.csv", codeCounts[1], 50, 10);
        BuildOptions options;
        options.definition = folder_->Write("cube.json", R"({ "tables": { "facts": { "file": "facts.csv" },
            "accounts": { "file": "accounts.csv" }, "regions": { "file": "regions.csv" } },
          "cubes": [ { "name": "Aggregates", "facts": "facts",
            "dimensions": [
              { "name": "Account", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
                { "name": "Account", "levels": [ { "name": "A", "key": "a" }, { "name": "B", "key": "b" }, { "name": "C", "key": "code" } ] } ] },
              { "name": "Region", "column": "region", "table": "regions", "key": "code", "hierarchies": [
                { "name": "Region", "levels": [ { "name": "A", "key": "a" }, { "name": "B", "key": "b", "memberName": "b_name" }, { "name": "C", "key": "code" } ] } ] },
              { "name": "Number", "column": "number" }, { "name": "Firm", "column": "firm" },
              { "name": "Kind", "column": "kind" },
              { "name": "Date", "column": "date", "calendar": { "periods": "days", "quarters": true } } ],
            "measures": [ { "name": "Amount", "column": "amount", "decimals": 0 },
                          { "name": "Wide", "column": "wide", "decimals": 0 },
                          { "name": "Lines", "aggregate": "count" } ] } ] })");
        options.output = folder_->Path("aggregates.cub");
        BuildCube(options);
        file_ = CubeFile::Open(options.output);
    }
    static void TearDownTestSuite() {
        file_.reset();
        facts_.clear();
        folder_.reset();
    }

    static void WriteTree(const char* name, std::uint32_t codes, std::uint32_t large, std::uint32_t small) {
        std::string csv = "code,a,b,b_name\n";
        for (std::uint32_t code = 0; code < codes; ++code) {
            // Names are compared ignoring letter case.
            csv += fmt::format("{:03},{},{:02},{} {}\n", code, code / large, code / small,
                               code / large == 0 ? "Unit" : "UNIT", code / small % namesOfUnits);
        }
        folder_->Write(name, csv);
    }

    static const FactTable& Table() { return file_->Cubes()[0].Facts(); }
    static std::size_t Column(std::size_t column) {
        for (std::size_t i = 0; i < Table().KeyColumns().size(); ++i) {
            if (Table().KeyColumns()[i].name == columns[column]) {
                return i;
            }
        }
        throw std::logic_error("no such column");
    }

    std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    /// The codes under all units of one name.
    static std::vector<KeyRange> UnitsNamed(std::uint32_t name) {
        const std::uint32_t first = name * unitSize, second = (name + namesOfUnits) * unitSize;
        return {{first, first + unitSize}, {second, second + unitSize}};
    }
    /// One range of a group's size, sometimes two.
    std::vector<KeyRange> DrawRanges(std::size_t column) {
        if (column == region && Below(3) == 0) {
            return UnitsNamed(Below(namesOfUnits));
        }
        if (column > region && Below(4) == 0) { // every other code
            std::vector<KeyRange> ranges;
            for (std::uint32_t code = Below(2); code < codeCounts[column]; code += 2) {
                ranges.push_back({code, code + 1});
            }
            return ranges;
        }
        const std::uint32_t size = std::array<std::uint32_t, 4>{1, 10, 50, 100}[Below(4)];
        const std::uint32_t first = Below(codeCounts[column]) / size * size;
        std::vector<KeyRange> ranges{{first, std::min(first + size, codeCounts[column])}};
        if (Below(5) == 0 && first >= size + 1) {
            ranges.insert(ranges.begin(), {first - size - 1, first - 1});
        }
        return ranges;
    }
    /// Whole months, from one to all of them, or days, sometimes with a gap.
    std::vector<KeyRange> DrawDays() {
        const auto buckets = Table().Aggregates()->TimeBuckets();
        const auto months = static_cast<std::uint32_t>(buckets.size() - 1);
        const std::uint32_t first = Below(months), last = first + 1 + Below(Below(2) == 0 ? 2 : months);
        KeyRange days{buckets[first], buckets[std::min(last, months)]};
        if (Below(2) == 0) {
            days.first += Below(40);
            days.last = std::min(days.last + Below(40), codeCounts[day]);
        }
        if (days.first >= days.last) {
            days = {100, 101};
        }
        if (days.Count() < 10 || Below(2) == 0) {
            return {days};
        }
        const std::uint32_t gap = days.first + 1 + Below(days.Count() - 9), length = 1 + Below(8);
        return {{days.first, gap}, {gap + length, days.last}};
    }

    using Ranges = std::array<std::vector<KeyRange>, 6>; ///< by column; empty: every code
    using Expected = std::array<std::int64_t, 3>;        ///< by measure

    static std::vector<Restriction> RestrictionsTo(const Ranges& ranges) {
        std::vector<Restriction> restrictions;
        for (std::size_t column = 0; column < ranges.size(); ++column) {
            if (!ranges[column].empty()) {
                restrictions.push_back({Column(column), ranges[column]});
            }
        }
        return restrictions;
    }
    static bool IsHelpedByAggregates(const Ranges& ranges) {
        const std::vector<Restriction> restrictions = RestrictionsTo(ranges);
        FactAccessPlan plan(Table(), 0);
        return PlanAggregates(Table(), restrictions, 0, BucketRounding::Nearest, plan);
    }
    static Expected SumOfFacts(const Ranges& ranges) {
        Expected expected{};
        for (const Fact& fact : facts_) {
            bool isIn = true;
            for (std::size_t column = 0; column < ranges.size(); ++column) {
                isIn = isIn && (ranges[column].empty() || Holds(ranges[column], fact.codes[column]));
            }
            expected[0] += isIn ? fact.amounts[0] : 0;
            expected[1] += isIn ? fact.amounts[1] : 0;
            expected[2] += isIn ? 1 : 0;
        }
        return expected;
    }
    static void Compare(const Ranges& ranges) {
        const Expected expected = SumOfFacts(ranges);
        for (std::size_t measure = 0; measure < expected.size(); ++measure) {
            const std::vector<Restriction> restrictions = RestrictionsTo(ranges);
            const FactSum sum = PlanAccess(Table(), restrictions, measure).Sum();
            const std::int64_t value = measure == 2 ? static_cast<std::int64_t>(sum.rows)
                                                    : sum.sum * Table().Measures()[measure].unit;
            ASSERT_EQ(value, expected[measure]) << "measure " << measure;
            ASSERT_EQ(sum.rows > 0, expected[2] > 0) << "measure " << measure;
            const FactSum once = SumFacts(Table(), restrictions, measure);
            ASSERT_EQ(once.sum, sum.sum) << "measure " << measure;
            ASSERT_EQ(once.rows > 0, sum.rows > 0) << "measure " << measure;
        }
    }

    std::mt19937 random_{5};
    static inline std::vector<Fact> facts_;
    static inline std::unique_ptr<TemporaryFolder> folder_;
    static inline std::shared_ptr<const CubeFile> file_;
};

TEST_F(AggregateTest, SumsWhatTheFactsDo) {
    ASSERT_NE(Table().Aggregates(), nullptr);
    ASSERT_EQ(Table().Aggregates()->TimeBuckets().size(), 361U);
    int answered = 0;
    for (int round = 0; round < 600; ++round) {
        Ranges ranges;
        for (std::size_t column = 0; column < ranges.size(); ++column) {
            if (Below(2) == 0) {
                ranges[column] = column == day ? DrawDays() : DrawRanges(column);
            }
        }
        answered += IsHelpedByAggregates(ranges) ? 1 : 0;
        ASSERT_NO_FATAL_FAILURE(Compare(ranges)) << "round " << round;
    }
    EXPECT_GT(answered, 100) << "too few queries are answered by aggregates";
}

/// Missing days are subtracted from a month; a difference of 0 is not the same as no facts.
TEST_F(AggregateTest, TellsEmptyFromZeroInPartOfAMonth) {
    const auto buckets = Table().Aggregates()->TimeBuckets();
    int empty = 0, nothing = 0;
    for (int round = 0; round < 600; ++round) {
        const std::uint32_t month = Below(360), lacking = 1 + Below(10);
        const std::uint32_t before = Below(lacking + 1);
        const KeyRange days{buckets[month] + before, buckets[month + 1] - (lacking - before)};
        const std::uint32_t number = Below(20), firm = Below(8), kind = Below(4);
        const Ranges ranges{{{}, {}, {{number, number + 1}}, {{firm, firm + 1}}, {{kind, kind + 1}}, {days}}};
        ASSERT_TRUE(IsHelpedByAggregates(ranges));
        ASSERT_NO_FATAL_FAILURE(Compare(ranges)) << "round " << round;
        const Expected expected = SumOfFacts(ranges);
        empty += expected[2] == 0 ? 1 : 0;
        nothing += expected[2] != 0 && expected[0] == 0 ? 1 : 0;
    }
    EXPECT_GT(empty, 100);
    EXPECT_GT(nothing, 20);
}

/// A cached plan gives the statement's result after the statement's text is gone.
TEST_F(AggregateTest, ServeCachedPlans) {
    PlanCache plans;
    std::vector<std::string> statements;
    std::vector<std::int64_t> expected;
    for (std::uint32_t last = 40; last < codeCounts[day]; last += 97) {
        const std::uint32_t count = 1 + last % 38, firm = last % 5;
        statements.push_back(
            fmt::format("WITH MEMBER [Date].Sel AS 'SUM(LastPeriods({},{}),[Measures].[Amount])' "
                        "MEMBER [Firm].Sel AS 'SUM({{[Firm].[{}],[Firm].[{}]}})' "
                        "SELECT {{[Date].Sel}} ON 0 FROM Aggregates WHERE ([Firm].Sel)",
                        count, MemberOfDay(last), firm, firm + 2));
        expected.push_back(SumOfFacts(
            {{{}, {}, {}, {{firm, firm + 1}, {firm + 2, firm + 3}}, {}, {{last + 1 - count, last + 1}}}})[0]);
    }
    for (int time = 0; time < 2; ++time) {
        for (std::size_t i = 0; i < statements.size(); ++i) {
            const CellValue cell = plans.Run(file_->Cubes()[0], statements[i]).Cell({0});
            EXPECT_EQ(cell.scaled, expected[i]) << statements[i];
        }
        EXPECT_EQ(plans.Count(), statements.size());
    }
}

TEST_F(AggregateTest, CoverMembersOfOneName) {
    const AggregateTable& aggregates = *Table().Aggregates();
    int made = 0;
    for (std::uint32_t name = 0; name < namesOfUnits; ++name) {
        const auto group = aggregates.Groups().Find(UnitsNamed(name));
        ASSERT_TRUE(group) << name;
        AggregateKey key;
        key.Add(static_cast<std::uint16_t>(Column(region)), *group);
        made += aggregates.Find(key) != nullptr ? 1 : 0;
    }
    EXPECT_GT(made, 0) << "no name has enough facts";
    EXPECT_EQ(aggregates.Groups().Count(), namesOfUnits);
    for (const std::vector<KeyRange>& other :
         {std::vector<KeyRange>{{0, 10}, {40, 50}}, {{0, 10}}, {{0, 10}, {50, 60}, {70, 80}}, {}}) {
        EXPECT_FALSE(aggregates.Groups().Find(other));
    }
}

TEST_F(AggregateTest, AreOfBothKindsAndMatchTheirKeys) {
    const AggregateTable& aggregates = *Table().Aggregates();
    std::size_t prefixSums = 0, coarser = 0, rows = 0;
    for (std::uint64_t i = 0; i < aggregates.Count(); ++i) {
        const Aggregate& aggregate = aggregates.At(i);
        (aggregate.keyCount > 0 ? prefixSums : rows) += 1;
        coarser += aggregate.coarserKeyCount > 0 ? 1 : 0;
        EXPECT_EQ(aggregates.Find(aggregate.key), &aggregate);
        const auto total =
            static_cast<std::uint64_t>(std::count_if(facts_.begin(), facts_.end(), [&](const Fact& fact) {
                const auto holds = [&](std::uint16_t column, const KeyRange& codes) {
                    if (column == AggregateKey::noColumn) {
                        return true;
                    }
                    std::size_t known = 0;
                    while (Column(known) != column) {
                        ++known;
                    }
                    return Holds(aggregates.Groups().Ranges(codes), fact.codes[known]);
                };
                return holds(aggregate.key.firstColumn, aggregate.key.first) &&
                       holds(aggregate.key.secondColumn, aggregate.key.second);
            }));
        EXPECT_EQ(aggregate.rows, total) << "aggregate " << i;
    }
    EXPECT_GT(prefixSums, 0U);
    EXPECT_GT(coarser, 0U);
    EXPECT_GT(rows, 0U);
    EXPECT_NO_THROW(file_->Verify({}));
}

/// A wrong sum in the coarser aggregate shows only in queries that read it.
TEST(CoarserAggregate, IsReadWhenNothingRestrictsTheLastColumn) {
    const TemporaryFolder folder;
    SmallCube cube;
    cube.aggregates.sums[0][2] = 8;
    cube.Write(folder.Path("small.cub"));
    const auto file = CubeFile::Open(folder.Path("small.cub"));
    const FactTable& facts = file->Cubes()[0].Facts();
    EXPECT_EQ(SumFacts(facts, {}, 0).sum, 8);
    constexpr std::array<KeyRange, 2> firms{KeyRange{0, 1}, KeyRange{1, 2}};
    for (const auto& [firm, sum] : {std::pair(0, -2), std::pair(1, 9)}) {
        const Restriction restriction{1, CodeRanges(&firms.at(static_cast<std::size_t>(firm)), 1)};
        EXPECT_EQ(SumFacts(facts, {&restriction, 1}, 0).sum, sum) << firm;
    }
}

/// A changed byte is detected before its value is used.
TEST_F(AggregateTest, DamagedPagesAreAnErrorOrTheRightAnswer) {
    const std::string good = folder_->Read("aggregates.cub");
    std::vector<std::pair<std::size_t, KeyRange>> queries;
    const AggregateTable& aggregates = *Table().Aggregates();
    for (std::uint64_t i = 0; i < aggregates.Count(); ++i) {
        if (aggregates.At(i).key.secondColumn == AggregateKey::noColumn &&
            aggregates.At(i).key.firstColumn != AggregateKey::noColumn) {
            queries.emplace_back(aggregates.At(i).key.firstColumn, aggregates.At(i).key.first);
        }
    }
    ASSERT_FALSE(queries.empty());
    for (int round = 0; round < 40; ++round) {
        std::string bad = good;
        char& byte = bad[random_() % bad.size()];
        byte = static_cast<char>(byte ^ static_cast<char>(1 + Below(255)));
        const auto* const first = reinterpret_cast<const std::byte*>(bad.data());
        try {
            const auto file = CubeFile::FromMemory("bad.cub", {first, first + bad.size()});
            for (const auto& [column, range] : queries) {
                const Restriction restriction{column, CodeRanges(&range, 1)};
                ASSERT_EQ(SumFacts(file->Cubes()[0].Facts(), std::span(&restriction, 1), 0).sum,
                          SumFacts(Table(), std::span(&restriction, 1), 0).sum);
            }
        } catch (const EngineError& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::DamagedFile) << error.what();
        }
    }
}

} // namespace
} // namespace qel::engine
