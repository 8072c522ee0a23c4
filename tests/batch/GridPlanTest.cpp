#include "batch/GridPlan.h"

#include "batch/ValueStatementParts.h"
#include "cube/ValueStatement.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace qel::batch {
namespace {

using ModSetCube::PeriodSpan;
using ModSetCube::ValueSelection;

std::string Statement(const std::function<void(ValueSelection&)>& change,
                      const PeriodSpan& span = {1, "[Date].[2024].[1]"}, const std::string& obsSel = "") {
    ValueSelection selection{.cubeName = "LedgerFNC",
                             .obsName = "OBS",
                             .obsNumber = "1",
                             .obsLevel = "All",
                             .obsMember = "All",
                             .activity = "All",
                             .summaryLevel = "All",
                             .summaryMember = "All",
                             .accounts = "All",
                             .measure = "Amount",
                             .moneySet = "All",
                             .plbs = "All",
                             .rh = "All",
                             .firma = "All",
                             .openingBalance = "All"};
    change(selection);
    return ComposeValueStatement(selection, span, obsSel);
}

std::string OfAccount(const std::string& account, const PeriodSpan& span = {1, "[Date].[2024].[1]"}) {
    return Statement([&](auto& s) { s.accounts = account; }, span);
}

TEST(ValueStatementParts, AreReadBackFromWhatTheyWereComposedOf) {
    const std::string sel = "\r\n Member [Obs].Sel as ' SUM ({  , [OBS].[a,b],[OBS].[O''x SELECT  { ] }) ' ";
    const auto read = ReadValueStatement(Statement(
        [](auto& s) {
            s.obsLevel = "Level2";
            s.summaryLevel = "SuperSum1";
            s.summaryMember = "a ) where (  b";
            s.firma = "x, y";
            s.measure = "Amount, net";
        },
        {12, "[Date].[2024].[it's ),[b]]]"}, sel));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->periods, "12");
    EXPECT_EQ(read->last, "[Date].[2024].[it's ),[b]]]");
    EXPECT_EQ(read->measure, "Amount, net");
    EXPECT_EQ(read->obsSel, sel);
    EXPECT_EQ(read->summaryGroup, ".[SuperSum1].[a ) where (  b]");
    EXPECT_EQ(read->cubeName, "LedgerFNC");
    const std::vector<std::string> slicer{"[Firma].[x, y]", "[ActX].[OBSx].[All].[OBS].[1]", "[Obs].Sel"};
    EXPECT_EQ(read->slicer, slicer);
}

TEST(ValueStatementParts, AreThoseOfValueStatementsAlone) {
    const std::string whole = OfAccount("4000");
    for (const std::string& other :
         {std::string(), std::string("SELECT {[Measures]} ON COLUMNS FROM LedgerFNC"),
          whole.substr(0, whole.size() - 1), whole + " ", whole.substr(0, whole.find(" SELECT"))}) {
        EXPECT_FALSE(ReadValueStatement(other).has_value()) << other;
    }
}

TEST(GridPlan, ComposesOneStatementForAccountsByMonths) {
    std::vector<std::string> statements;
    for (const char* account : {"4000", "4]]1"}) {
        for (const char* month : {"[Date].[2024].[1]", "[Date].[2024].[2]"}) {
            statements.push_back(OfAccount(account, {1, month}));
        }
    }
    statements.push_back(OfAccount("4000", {3, "[Date].[2024].[2]"}));
    statements.push_back(OfAccount("4]]1", {3, "[Date].[2024].[2]"}));
    const auto plan = PlanGrids(statements);
    EXPECT_TRUE(plan.alone.empty());
    ASSERT_EQ(plan.grids.size(), 1U);
    EXPECT_EQ(ComposeGridStatement(plan.grids.front()),
              "WITH MEMBER [Date].[QelSpan3] as '   SUM( "
              "LastPeriods(3,[Date].[2024].[2]),[Measures].[Amount])    ' "
              "SELECT {[Date].[2024].[1],[Date].[2024].[2],[Date].[QelSpan3]} ON COLUMNS, "
              "{[Accounts].[AccountCodes].[All].[4000],[Accounts].[AccountCodes].[All].[4]]1]} ON ROWS FROM "
              "LedgerFNC "
              "WHERE ([Measures].[Amount],[ActX].[OBSx].[All].[OBS].[1]) CELL PROPERTIES VALUE");
    const std::vector<std::vector<std::size_t>> places{{0, 1, 4}, {2, 3, 5}};
    EXPECT_EQ(plan.grids.front().statements, places);
}

TEST(GridPlan, GroupsWhatDiffersInOneMember) {
    struct Case {
        const char* what;
        std::vector<std::string> statements;
        std::size_t grids, alone;
    };
    const auto firm = [](const char* name, const char* account = "4000") {
        return Statement([&](auto& s) {
            s.firma = name;
            s.accounts = account;
        });
    };
    const auto group = [](const char* level, const char* member) {
        return Statement([&](auto& s) {
            s.summaryLevel = level;
            s.summaryMember = member;
        });
    };
    const auto measure = [](const char* name) { return Statement([&](auto& s) { s.measure = name; }); };
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
        {"another kind of statement",
         {"SELECT {[A]} ON COLUMNS FROM x", OfAccount("1"), OfAccount("2")},
         1,
         1},
    };
    for (const auto& c : cases) {
        const auto plan = PlanGrids(c.statements);
        EXPECT_EQ(plan.grids.size(), c.grids) << c.what;
        EXPECT_EQ(plan.alone.size(), c.alone) << c.what;
    }
}

TEST(GridPlan, PlacesEveryCellOfALargeSheetOnce) {
    std::vector<std::string> statements;
    for (int account = 0; account < 834; ++account) {
        for (int month = 1; month <= 12; ++month) {
            statements.push_back(
                OfAccount(fmt::format("{}", account), {1, fmt::format("[Date].[2024].[{}]", month)}));
        }
    }
    const auto plan = PlanGrids(statements);
    EXPECT_LE(plan.grids.size(), 6U);
    std::multiset<std::size_t> placed(plan.alone.begin(), plan.alone.end());
    for (const auto& grid : plan.grids) {
        ASSERT_EQ(grid.statements.size(), grid.rows.size());
        for (std::size_t row = 0; row < grid.rows.size(); ++row) {
            for (std::size_t column = 0; column < grid.spans.size(); ++column) {
                const std::size_t statement = grid.statements[row][column];
                placed.insert(statement);
                EXPECT_NE(statements[statement].find(grid.rows[row] + ")"), std::string::npos);
                EXPECT_NE(statements[statement].find(grid.spans[column].last), std::string::npos);
            }
        }
    }
    EXPECT_EQ(placed.size(), statements.size());
    EXPECT_EQ(std::set<std::size_t>(placed.begin(), placed.end()).size(), statements.size());
}

} // namespace
} // namespace qel::batch
