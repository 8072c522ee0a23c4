#include "batch/GridPlan.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace qel::batch {
namespace {

using ModSetCube::PeriodSpan;
using ModSetCube::ValueQuery;
using Queries = std::vector<ValueQuery>;

ValueQuery Query(const std::function<void(ValueQuery&)>& change,
                 const PeriodSpan& span = {1, "[Date].[2024].[1]"}) {
    ValueQuery query;
    query.cubeName = "LedgerFNC";
    query.measure = "Amount";
    query.span = span;
    query.obsName = "OBS";
    query.obsNumber = "1";
    change(query);
    return query;
}

ValueQuery OfAccount(const std::string& account, const PeriodSpan& span = {1, "[Date].[2024].[1]"}) {
    return Query([&](auto& q) { q.accounts = account; }, span);
}

TEST(GridPlan, ComposesOneStatementForAccountsByMonths) {
    Queries queries;
    for (const char* account : {"4000", "4]]1"}) {
        for (const char* month : {"[Date].[2024].[1]", "[Date].[2024].[2]"}) {
            queries.push_back(OfAccount(account, {1, month}));
        }
    }
    queries.push_back(OfAccount("4000", {3, "[Date].[2024].[2]"}));
    queries.push_back(OfAccount("4]]1", {3, "[Date].[2024].[2]"}));
    const auto plan = PlanGrids(queries);
    EXPECT_TRUE(plan.alone.empty());
    ASSERT_EQ(plan.grids.size(), 1U);
    EXPECT_EQ(
        ComposeGridStatement(plan.grids.front()),
        "WITH MEMBER [Date].[QelSpan3] as '   SUM( LastPeriods(3,[Date].[2024].[2]),[Measures].[Amount])    "
        "' SELECT {[Date].[2024].[1],[Date].[2024].[2],[Date].[QelSpan3]} ON COLUMNS, "
        "{[Accounts].[AccountCodes].[All].[4000],[Accounts].[AccountCodes].[All].[4]]1]} ON ROWS FROM "
        "LedgerFNC WHERE ([Measures].[Amount],[ActX].[OBSx].[All].[OBS].[1]) CELL PROPERTIES VALUE");
    const std::vector<std::vector<std::size_t>> places{{0, 1, 4}, {2, 3, 5}};
    EXPECT_EQ(plan.grids.front().queries, places);
}

TEST(GridPlan, GroupsWhatDiffersInOneMember) {
    struct Case {
        const char* what;
        Queries queries;
        std::size_t grids, alone;
    };
    const auto firm = [](const char* name, const char* account = "4000") {
        return Query([&](auto& q) {
            q.firma = name;
            q.accounts = account;
        });
    };
    const auto group = [](const char* level, const char* member) {
        return Query([&](auto& q) {
            q.summaryLevel = level;
            q.summaryMember = member;
        });
    };
    const auto measure = [](const char* name) { return Query([&](auto& q) { q.measure = name; }); };
    const auto main = std::make_shared<const ModSetCube::ObsMembers>(2, "[OBS].[Main]");
    const auto other = std::make_shared<const ModSetCube::ObsMembers>();
    const auto ofObs = [](const auto& members, const char* account) {
        return Query([&](auto& q) {
            q.obsPart = ModSetCube::ObsPart::LevelMember;
            q.obsMembers = members;
            q.accounts = account;
        });
    };
    const Case cases[] = {
        {"one formula", {OfAccount("4000")}, 0, 1},
        {"another member in any place", {firm("10"), firm("20"), firm("30")}, 1, 0},
        {"summary groups, of several levels too", {group("SuperSum1", "4"), group("SuperSum2", "42")}, 1, 0},
        {"two members at once", {firm("10", "4000"), firm("20", "4001")}, 0, 2},
        {"a table of firms and accounts",
         {firm("10", "1"), firm("20", "1"), firm("10", "2"), firm("20", "2")},
         2,
         0},
        {"a restriction that the other lacks", {OfAccount("4000"), firm("10", "4000")}, 0, 2},
        {"another measure", {measure("Amount"), measure("Lines")}, 0, 2},
        {"another period alone",
         {OfAccount("1", {1, "[Date].[a]"}), OfAccount("1", {2, "[Date].[b]"})},
         1,
         0},
        {"periods that do not fill a grid",
         {OfAccount("1", {1, "[Date].[a]"}), OfAccount("2", {1, "[Date].[b]"}),
          OfAccount("2", {1, "[Date].[c]"})},
         1,
         1},
        {"the same OBS members", {ofObs(main, "1"), ofObs(main, "2"), ofObs(other, "1")}, 1, 1},
    };
    for (const auto& c : cases) {
        const auto plan = PlanGrids(c.queries);
        EXPECT_EQ(plan.grids.size(), c.grids) << c.what;
        EXPECT_EQ(plan.alone.size(), c.alone) << c.what;
    }
}

TEST(GridPlan, PlacesEveryCellOfALargeSheetOnce) {
    Queries queries;
    for (int account = 0; account < 834; ++account) {
        for (int month = 1; month <= 12; ++month) {
            queries.push_back(
                OfAccount(fmt::format("{}", account), {1, fmt::format("[Date].[2024].[{}]", month)}));
        }
    }
    const auto plan = PlanGrids(queries);
    EXPECT_LE(plan.grids.size(), 6U);
    std::multiset<std::size_t> placed(plan.alone.begin(), plan.alone.end());
    for (const auto& grid : plan.grids) {
        ASSERT_EQ(grid.queries.size(), grid.rows.size());
        for (std::size_t row = 0; row < grid.rows.size(); ++row) {
            for (std::size_t column = 0; column < grid.spans.size(); ++column) {
                const std::size_t number = grid.queries[row][column];
                placed.insert(number);
                EXPECT_EQ(grid.rows[row].member,
                          "[Accounts].[AccountCodes].[All].[" + queries[number].accounts + "]");
                EXPECT_EQ(grid.spans[column], queries[number].span);
            }
        }
    }
    EXPECT_EQ(placed.size(), queries.size());
    EXPECT_EQ(std::set<std::size_t>(placed.begin(), placed.end()).size(), queries.size());
}

} // namespace
} // namespace qel::batch
