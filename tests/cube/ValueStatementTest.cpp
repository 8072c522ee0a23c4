#include "cube/ValueStatement.h"

#include "cube/MemberName.h"

#include <gtest/gtest.h>

#include <functional>

namespace qel::ModSetCube {
namespace {

/// Structure 1, node 12, and no restriction else.
ValueSelection Everything() {
    ValueSelection selection;
    selection.cubeName = "Finance";
    selection.obsName = "1";
    selection.obsNumber = "12";
    selection.obsLevel = "All";
    selection.activity = "All";
    selection.summaryLevel = "All";
    selection.summaryMember = "All";
    selection.accounts = "All";
    selection.measure = "Amount";
    selection.moneySet = selection.plbs = selection.rh = selection.firma = selection.openingBalance = "All";
    return selection;
}

const PeriodSpan march{3, "[Date].[2020].[3]"};

TEST(ValueStatement, IsExactToTheBlank) {
    ValueSelection selection = Everything();
    selection.obsLevel = "Cost_Centers";
    selection.obsMember = "100";
    selection.accounts = "4000";
    EXPECT_EQ(
        ComposeValueStatement(selection, march, ""),
        "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(3,[Date].[2020].[3]),[Measures].[Amount])    ' "
        "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Finance where "
        "(  [ActX].[OBSx].[All].[1].[12],[Cost_Centers].[All].[100],[Accounts].[AccountCodes].[All].[4000])");
}

TEST(ValueStatement, PutsTheObsMemberAfterTheDateMember) {
    ValueSelection selection = Everything();
    selection.obsLevel = "Level2";
    selection.measure = "Net [local]";
    selection.cubeName = "Two Words";
    EXPECT_EQ(
        ComposeValueStatement(selection, {12, "[Date].[D]"}, "<obs>"),
        "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(12,[Date].[D]),[Measures].[Net [local]])    "
        "'<obs> "
        "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Two Words where "
        "(  [ActX].[OBSx].[All].[1].[12],[Obs].Sel)");
}

/// What stands between "where (  " and ")".
std::string SlicersOf(const ValueSelection& selection) {
    const std::string text = ComposeValueStatement(selection, march, "");
    const std::string opening = " where (  ";
    const std::size_t start = text.find(opening) + opening.size();
    return text.substr(start, text.size() - 1 - start);
}

TEST(ValueStatement, MakesASlicerOfEverySelection) {
    const std::string obs = "[ActX].[OBSx].[All].[1].[12]";
    const struct {
        const char* what;
        std::function<void(ValueSelection&)> set;
        std::string slicers;
    } cases[] = {
        {"All everywhere keeps the OBS piece", [](auto&) {}, obs},
        {"All in any letter case, blanks around it", [](auto& s) { s.firma = s.accounts = " aLL "; }, obs},
        {"nothing restricts nothing",
         [](auto& s) {
             s.plbs = s.rh = s.firma = s.openingBalance = s.moneySet = "";
             s.activity = s.accounts = "  ";
         },
         obs},
        {"every piece, trimmed, in its fixed order",
         [](auto& s) {
             s.accounts = " 9 ";
             s.obsLevel = " Cost_Centers ";
             s.obsMember = " 8 ";
             s.activity = " 6 ";
             s.moneySet = " 5 ";
             s.openingBalance = " 4 ";
             s.firma = " 3 ";
             s.rh = " 2 ";
             s.plbs = " 1 ";
         },
         "[Plbs].[1],[RH].[2],[Firma].[3],[Opening_Balance].[4],[MoneySet].[5],"
         "[Activities].[ActivityCodes].[ActivityCode].[6]," +
             obs + ",[Cost_Centers].[All].[8],[Accounts].[AccountCodes].[All].[9]"},
        {"OBS name is trimmed, OBS number is not",
         [](auto& s) {
             s.obsName = " 1 ";
             s.obsNumber = " 12 ";
         },
         "[ActX].[OBSx].[All].[1].[ 12 ]"},
        {"an empty OBS number keeps its brackets", [](auto& s) { s.obsNumber = ""; },
         "[ActX].[OBSx].[All].[1].[]"},
        {"a zero character alone is no OBS number", [](auto& s) { s.obsNumber = std::string(1, '\0'); },
         "[ActX].[OBSx].[All].[1]"},
        {"two zero characters are one", [](auto& s) { s.obsNumber = std::string(2, '\0'); },
         "[ActX].[OBSx].[All].[1].[" + std::string(2, '\0') + "]"},
        {"All as OBS name and number are keys", [](auto& s) { s.obsName = s.obsNumber = "All"; },
         "[ActX].[OBSx].[All].[All].[All]"},
        {"the OBS level's letter case counts", [](auto& s) { s.obsLevel = "ALL"; }, obs + ",[Obs].Sel"},
        {"so does the cost centres'", [](auto& s) { s.obsLevel = "cost_centers"; }, obs + ",[Obs].Sel"},
        {"an empty OBS level is a level", [](auto& s) { s.obsLevel = ""; }, obs + ",[Obs].Sel"},
        {"a cost centre named All",
         [](auto& s) {
             s.obsLevel = "Cost_Centers";
             s.obsMember = "All";
         },
         obs + ",[Cost_Centers].[All].[All]"},
        {"nothing in a key is escaped", [](auto& s) { s.accounts = "ע\"מ ] ' & , )"; },
         obs + ",[Accounts].[AccountCodes].[All].[ע\"מ ] ' & , )]"},
        {"a no-break space is no blank", [](auto& s) { s.rh = "\u00A0"; }, "[RH].[\u00A0]," + obs},
    };
    for (const auto& c : cases) {
        ValueSelection selection = Everything();
        c.set(selection);
        EXPECT_EQ(SlicersOf(selection), c.slicers) << c.what;
    }
}

TEST(ValueStatement, PutsTheSummaryGroupOnRows) {
    const struct {
        const char* level;
        const char* member;
        const char* rows;
    } cases[] = {
        {"SuperSum2", " 41 ", "[SuperSumery].[SumeryCode].[SuperSum2].[41] }"},
        {"SuperSum2", "", "[SuperSumery].[SumeryCode].[SuperSum2].[] }"},
        {"aLL", "41", "[SuperSumery].[SumeryCode] }"},
        {"", "41", "[SuperSumery].[SumeryCode] }"},
        {" All ", "41", "[SuperSumery].[SumeryCode].[ All ].[41] }"},
    };
    for (const auto& c : cases) {
        ValueSelection selection = Everything();
        selection.summaryLevel = c.level;
        selection.summaryMember = c.member;
        const std::string text = ComposeValueStatement(selection, march, "");
        const std::size_t start = text.find("[SuperSumery]");
        EXPECT_EQ(text.substr(start, text.find("ON ROWS") - start), c.rows) << c.level;
    }
}

TEST(MemberNameStatement, IsExactToTheBlank) {
    EXPECT_EQ(ComposeMemberNameStatement("Finance", "SuperSum2", "41"),
              " SELECT NON EMPTY { [Measures] } on columns,  NON EMPTY  "
              "{[SuperSumery].[SumeryName].[SuperSum2Name].Allmembers  } ON ROWS  From [Finance] where (  "
              "[SuperSumery].[SumeryCode].[41] )");
}

} // namespace
} // namespace qel::ModSetCube
