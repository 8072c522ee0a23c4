#include "cube/CellLines.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

/// A query of two months and two OBS members over a provider that answers with one line a statement.
class CellLinesTest : public testing::Test {
protected:
    CellLinesTest() {
        provider.recordFields = 2;
        provider.lastField = "[Measures].[Amount]";
        provider.recordRows = {{"2020-02", 0.1}};
        thread.CubeConnection = provider.CreateConnection();
        thread.CubeConnection->Open("connection", "", "", optionsUnspecified);
        thread.provider = &provider;
        thread.dates.CubeDateNames = {"[Date].[1]", "[Date].[2]", "[Date].[3]"};
        query.cubeName = "Finance";
        query.measure = "Amount";
        query.obsName = "1";
        query.accounts = "4000";
        query.span = {2, "[Date].[3]"};
        query.obsPart = ObsPart::LevelMember;
        query.obsMembers = std::make_shared<const ObsMembers>(ObsMembers{"[OBS].[A]", "[OBS].[B]"});
    }

    test::RecordingProvider provider;
    ThreadState thread;
    ValueQuery query;
};

TEST_F(CellLinesTest, APlainStatementForEachPeriodAndMemberWhereSumsAreRefused) {
    provider.refusedWord = "WITH";
    const CellLines lines =
        ReadCellLines(thread, provider, query, {.most = 10, .columns = {"[Date].[Month]"}});
    EXPECT_EQ(lines.rows.rows.size(), 4);
    EXPECT_EQ(SumOfField(lines.rows, lines.amount.value()), 0.4);
    EXPECT_TRUE(lines.isComplete);
    std::vector<std::string> sent;
    for (const std::string& line : provider.log) {
        if (line.starts_with("recordset DRILLTHROUGH")) {
            sent.push_back(line.substr(10));
        }
    }
    ASSERT_EQ(sent.size(), 5);
    EXPECT_TRUE(sent[0].starts_with("DRILLTHROUGH MAXROWS 10 WITH MEMBER [Date].DateSel as")) << sent[0];
    EXPECT_EQ(
        sent[2],
        "DRILLTHROUGH MAXROWS 10 SELECT {[Measures].[Amount]} ON COLUMNS, {[Date].[2]} ON ROWS From Finance "
        "where ([ActX].[OBSx].[All].[1], [OBS].[B], [Accounts].[AccountCodes].[All].[4000], "
        "[SuperSumery].[SumeryCode]) RETURN [Date].[Month], [Measures].[Amount]");
    EXPECT_NE(sent[4].find("{[Date].[3]}"), std::string::npos);
}

TEST_F(CellLinesTest, LinesThatMayGoOnAreNotComplete) {
    const CellLines lines = ReadCellLines(thread, provider, query, {.most = 1});
    EXPECT_FALSE(lines.isComplete);
    EXPECT_FALSE(lines.rows.total);
}

TEST_F(CellLinesTest, AProviderThatRefusesEverythingIsHeard) {
    provider.refusedWord = "DRILLTHROUGH";
    EXPECT_THROW(ReadCellLines(thread, provider, query, {}), AutomationError);
}

TEST(SumOfField, AddsDecimalsWithoutRounding) {
    Rowset rows{{"Amount"}, {}};
    for (int i = 0; i < 1000; ++i) {
        rows.rows.push_back({0.1});
        rows.rows.push_back({-12345678901.07});
    }
    EXPECT_EQ(SumOfField(rows, 0), -12345678900970.0);
    rows.rows = {{0.3}, {-0.5}, {Null{}}, {"none"}};
    EXPECT_EQ(SumOfField(rows, 0), -0.2);
    rows.rows = {{3e18}, {3e18}, {3e18}, {3e18}, {5e20}, {-2.5}};
    EXPECT_EQ(SumOfField(rows, 0), 5.12e20);
}

} // namespace
} // namespace qel::ModSetCube
