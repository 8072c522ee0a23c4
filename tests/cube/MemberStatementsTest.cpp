#include "cube/MemberStatements.h"

#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

struct StatementCase {
    const char* what;
    ListedMembers members;
    std::string statement;
};

// Statements are compared to the blank: the provider's cache and the suite's own logs know them as they
// stand.
const StatementCase cases[] = {
    {"accounts of every firm", AccountsListing{"", "1"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "crossjoin([Accounts].[AccountCodes].[AccountCode].members,[Accounts].[AccountNames].[AccountName]."
     "members)}on rows FROM LedgerFNC where( [Firma].[All], [ActX].[OBSx].[All].[1])"},
    {"accounts of one firm; names are inserted as they stand", AccountsListing{"פירמה]", "O'Brien"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "crossjoin([Accounts].[AccountCodes].[AccountCode].members,[Accounts].[AccountNames].[AccountName]."
     "members)}on rows FROM LedgerFNC where( [Firma].[All].[פירמה]], [ActX].[OBSx].[All].[O'Brien])"},
    {"an OBS level, in any letter case", ObsListing{"OBS", "LeVeL2"},
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[LeVeL2].members }on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS]"},
    {"an OBS level under a sub-member", ObsListing{"OBS", "Level1", "2"},
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[Level1].members }on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[2]"},
    {"an empty sub-member is wrapped like any other", ObsListing{"OBS", "Level1", ""},
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[Level1].members }on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[]"},
    {"three letters are no level: cost centres", ObsListing{"OBS", "lev", "2"},
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM "
     "LedgerFNC WHERE [ActX].[OBSx].[All].[OBS].[2]"},
    {"all cost centres take no sub-member", ObsListing{"", "Cost_Centers", "2"},
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM "
     "LedgerFNC WHERE [ActX].[OBSx].[All]"},
    {"activities", ActivitiesListing{"OBS", "1"},
     "SELECT {[MoneyType]} on columns, non empty{crossjoin ( "
     "[Activities].[ActivityCodes].[ActivityCode].members , "
     "[Activities].[ActivityNames].[ActivityName].members)}on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[1]"},
    {"codes of a summary level; All in other letters is a firm",
     SummaryLevelListing{SummaryLevelListing::By::Code, "SuperSum2", "all", "OBS"},
     "SELECT {[AccX].[AccX].[All] } on columns,  {  [SuperSumery].[SumeryCode].[SuperSum2].Allmembers }on "
     "rows FROM LedgerFNC where( [Firma].[All].[all], [ActX].[OBSx].[All].[OBS])"},
    {"names of a summary level; a sub-member follows the closed slicer",
     SummaryLevelListing{SummaryLevelListing::By::Name, "SuperSum2Name", "All", "OBS", "7"},
     "SELECT {[AccX].[AccX].[All] } on columns,  {[SuperSumery].[SumeryName].[SuperSum2Name].Allmembers }on "
     "rows FROM LedgerFNC where( [Firma].[All], [ActX].[OBSx].[All].[OBS]).[7]"},
    {"summary groups; a firm follows the closed slicer", SummaryGroupsListing{"SuperSum1", "10"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  crossjoin( "
     "[SuperSumery].[SumeryCode].[SuperSum1].members, "
     "[SuperSumery].[SumeryName].[SuperSum1Name].members)}on rows FROM LedgerFNC where( [Firma].[All]).[10]"},
    {"cost centres of an OBS number", ObsListing{"OBS", "Cost_Centers"},
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM "
     "LedgerFNC WHERE [ActX].[OBSx].[All].[OBS]"},
    {"summary groups of a firm and an OBS number", SummaryGroupsOfObsListing{"SuperSum1", "10", "OBS"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  crossjoin( "
     "[SuperSumery].[SumeryCode].[SuperSum1].members, [SuperSumery].[SumeryName].[SuperSum1Name].members)}on "
     "rows FROM LedgerFNC where( [Firma].[All].[10], [ActX].[OBSx].[All].[OBS])"},
    {"account codes alone", AccountCodesListing{"All", "OBS"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "[Accounts].[AccountCodes].[AccountCode].members}on rows "
     "FROM LedgerFNC where( [Firma].[All], [ActX].[OBSx].[All].[OBS])"},
};

TEST(MemberStatements, AreExactToTheBlank) {
    for (const auto& c : cases) {
        EXPECT_EQ(ComposeListing({"LedgerFNC", c.members}), c.statement) << c.what;
    }
    EXPECT_EQ(ComposeObsLevelsStatement("LedgerFNC", "OBS", "1"),
              "SELECT  NON Empty {[Measures] } ON COLUMNS, NON Empty { [OBS].Members } ON ROWS  From  "
              "[LedgerFNC]Where ([Actx].[OBSx].[All].[OBS].[1])");
}

} // namespace
} // namespace qel::ModSetCube
