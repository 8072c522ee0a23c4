#include "engine/eval/FactScan.h"

#include "engine/eval/FactAccessPlan.h"
#include "engine/eval/ScanPlan.h"
#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

namespace qel::engine {
namespace {

using test::TemporaryFolder;

/// A fact by the codes of its three key columns, which cover all code widths: 4, 2 and 1 bytes.
struct Fact {
    std::array<std::uint32_t, 3> codes;
    std::array<std::int64_t, 4> amounts; ///< all value widths: 1, 2, 4 and 8 bytes
};

constexpr std::array<std::uint32_t, 3> codeCounts{70'000, 300, 5};
constexpr const char* columns[] = {"large", "medium", "small"};

class FactScan : public testing::Test {
protected:
    static void SetUpTestSuite() {
        std::mt19937_64 random(7);
        const auto below = [&](std::uint64_t bound) { return random() % bound; };
        const auto amount = [&](std::int64_t bound) {
            return static_cast<std::int64_t>(below(static_cast<std::uint64_t>(2 * bound + 1))) - bound;
        };
        std::string csv = "large,medium,small,a1,a2,a4,a8\n";
        for (std::uint32_t i = 0; i < 90'000; ++i) {
            // Every code occurs, some of them often. Numbers of equal length sort like their codes.
            const std::uint32_t large = i < codeCounts[0] ? i : static_cast<std::uint32_t>(below(40));
            Fact fact{{large, static_cast<std::uint32_t>(i < 300 ? i : below(below(300) + 1)),
                       static_cast<std::uint32_t>(i < 5 ? i : below(5))},
                      {amount(127), amount(32'000), amount(2'000'000'000), amount(90'000'000'000'000)}};
            csv += fmt::format("{:05},{:03},{},{},{},{},{}\n", fact.codes[0], fact.codes[1], fact.codes[2],
                               fact.amounts[0], fact.amounts[1], fact.amounts[2], fact.amounts[3]);
            facts_.push_back(fact);
        }
        const TemporaryFolder folder;
        folder.Write("facts.csv", csv);
        BuildOptions options;
        options.definition = folder.Write("cube.json", R"({ "tables": { "facts": { "file": "facts.csv" } },
          "cubes": [ { "name": "Scan", "facts": "facts",
            "dimensions": [ { "name": "Large", "column": "large" }, { "name": "Medium", "column": "medium" },
                            { "name": "Small", "column": "small" } ],
            "measures": [ { "name": "a1", "column": "a1", "decimals": 0 }, { "name": "a2", "column": "a2", "decimals": 0 },
                          { "name": "a4", "column": "a4", "decimals": 0 }, { "name": "a8", "column": "a8", "decimals": 0 },
                          { "name": "n", "aggregate": "count" } ],
            "sortOrders": [ [ "large", "medium" ], [ "medium", "large" ] ] } ] })");
        options.output = folder.Path("scan.cub");
        BuildCube(options);
        cube_ = CubeFile::Open(options.output)->FindCube("Scan");
    }
    static void TearDownTestSuite() {
        cube_.reset();
        facts_.clear();
    }

    static const FactTable& Table() { return cube_->Facts(); }
    /// The fact table's number of a column as the tests count them.
    static std::size_t Column(std::size_t column) {
        for (std::size_t i = 0; i < Table().KeyColumns().size(); ++i) {
            if (Table().KeyColumns()[i].name == columns[column]) {
                return i;
            }
        }
        throw std::logic_error("no such column");
    }

    struct RandomRestrictions {
        std::array<std::vector<KeyRange>, 3> ranges;
        std::array<bool, 3> isSet{};
        std::vector<Restriction> list;

        bool Takes(const Fact& fact) const {
            for (std::size_t i = 0; i < 3; ++i) {
                const bool isIn = std::any_of(ranges[i].begin(), ranges[i].end(), [&](KeyRange range) {
                    return fact.codes[i] >= range.first && fact.codes[i] < range.last;
                });
                if (isSet[i] && !isIn) {
                    return false;
                }
            }
            return true;
        }
    };

    std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    /// No, one or many ranges per column; sometimes an empty set, sometimes all codes but one.
    void Restrict(RandomRestrictions& restrictions) {
        for (std::size_t i = 0; i < 3; ++i) {
            restrictions.isSet[i] = Below(3) > 0;
            const std::uint32_t pieces =
                std::array<std::uint32_t, 4>{0, 1, 2, 60}[Below(8) == 0 ? 0 : 1 + Below(3)];
            std::uint32_t next = 0;
            for (std::uint32_t piece = 0; piece < pieces && next < codeCounts[i]; ++piece) {
                const std::uint32_t first = next + Below(std::max(1U, codeCounts[i] / (pieces + 1)));
                const std::uint32_t last =
                    Below(2) == 0 ? first + 1 : first + 1 + Below(std::max(1U, codeCounts[i] / (pieces + 1)));
                if (first < codeCounts[i]) {
                    restrictions.ranges[i].push_back({first, std::min(last, codeCounts[i])});
                }
                next = last + 1;
            }
            if (restrictions.isSet[i]) {
                restrictions.list.push_back({Column(i), restrictions.ranges[i]});
            }
        }
    }

    std::mt19937 random_{99};
    static inline std::vector<Fact> facts_;
    static inline std::shared_ptr<const Cube> cube_;
};

TEST_F(FactScan, ReadsEveryWidthOfCodesAndAmounts) {
    ASSERT_EQ(Table().RowCount(), facts_.size());
    EXPECT_EQ(Table().KeyColumns()[Column(0)].width, 4);
    EXPECT_EQ(Table().KeyColumns()[Column(1)].width, 2);
    EXPECT_EQ(Table().KeyColumns()[Column(2)].width, 1);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(Table().Measures()[i].width, 1 << i);
    }
    for (int round = 0; round < 300; ++round) {
        RandomRestrictions restrictions;
        Restrict(restrictions);
        std::uint64_t rows = 0;
        std::array<std::int64_t, 4> sums{};
        std::array<std::vector<std::uint8_t>, 3> marks;
        for (std::size_t i = 0; i < 3; ++i) {
            marks[i].resize(codeCounts[i]);
        }
        for (const Fact& fact : facts_) {
            if (!restrictions.Takes(fact)) {
                continue;
            }
            ++rows;
            for (std::size_t i = 0; i < 4; ++i) {
                sums[i] += fact.amounts[i];
            }
            for (std::size_t i = 0; i < 3; ++i) {
                marks[i][fact.codes[i]] = 1;
            }
        }
        for (std::size_t measure = 0; measure < 5; ++measure) {
            const FactSum total = SumFacts(Table(), restrictions.list, measure);
            // For sums, `rows` only tells zero from non-zero.
            ASSERT_EQ(measure < 4 ? total.rows > 0 : total.rows == rows, measure < 4 ? rows > 0 : true)
                << "round " << round << ", measure " << measure;
            ASSERT_EQ(total.sum, measure < 4 ? sums[measure] : 0)
                << "round " << round << ", measure " << measure;
        }
        ASSERT_EQ(AnyFact(Table(), restrictions.list), rows > 0) << "round " << round;
        for (std::size_t i = 0; i < 3; ++i) {
            std::vector<std::uint8_t> found(codeCounts[i]);
            MarkCodes(Table(), restrictions.list, Column(i), found);
            ASSERT_EQ(found, marks[i]) << "round " << round << ", column " << columns[i];
        }
    }
}

TEST_F(FactScan, ReadsFewUnneededRows) {
    const KeyRange one{12, 13};
    const KeyRange hundred{1000, 1100};
    const KeyRange allMedium{0, 299};
    const auto restrict = [](std::size_t column, const KeyRange& range) {
        return Restriction{Column(column), CodeRanges(&range, 1)};
    };
    const struct {
        const char* what;
        std::vector<Restriction> restrictions;
        std::uint64_t mostRows; ///< that the plan may leave to test
    } cases[] = {
        {"one code of the large column", {restrict(0, one)}, 1000},
        {"a group of the large column", {restrict(0, hundred)}, 100},
        {"a code of the medium column", {restrict(1, one)}, 4000},
        {"a code of each: only their common rows", {restrict(0, one), restrict(1, one)}, 40},
        {"a group of one, a code of the other, either order", {restrict(1, one), restrict(0, hundred)}, 100},
        {"nearly all of one column beside one code of the other",
         {restrict(1, allMedium), restrict(0, one)},
         1000},
    };
    for (const auto& c : cases) {
        const ScanPlan plan = PlanScan(Table(), c.restrictions);
        std::uint64_t rows = 0;
        for (const RowRange range : plan.rows) {
            rows += range.Count();
        }
        EXPECT_LE(rows, c.mostRows) << c.what;
    }
}

TEST_F(FactScan, FindsNothingUnderASetWithoutCodes) {
    const Restriction none{Column(2), CodeRanges()};
    EXPECT_EQ(SumFacts(Table(), std::span(&none, 1), 0).rows, 0U);
    EXPECT_FALSE(AnyFact(Table(), std::span(&none, 1)));
}

} // namespace
} // namespace qel::engine
