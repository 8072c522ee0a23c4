#include "cube/MemberStatements.h"

#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

// Statements are compared to the blank: the provider's cache and the suite's own logs know them as they
// stand.
TEST(MemberStatements, AreExactToTheBlank) {
    const std::string accX = "SELECT {[AccX].[AccX].[All] } on columns,  ",
                      money = "SELECT {[MoneyType]} on columns, ";
    const std::string accounts = accX +
                                 "non empty{  crossjoin([Accounts].[AccountCodes].[AccountCode].members,"
                                 "[Accounts].[AccountNames].[AccountName].members)}on rows";
    const std::string centres = money + "non empty{ [Cost_Centers].[Cost_Center].members }on rows";
    const std::string level1 = money + "non empty{[OBS].[Level1].members }on rows";
    const std::string groups = accX +
                               "non empty{  crossjoin( [SuperSumery].[SumeryCode].[SuperSum1].members, "
                               "[SuperSumery].[SumeryName].[SuperSum1Name].members)}on rows";
    const std::string obs = " WHERE [ActX].[OBSx].[All]";
    using Summary = SummaryLevelListing;
    const struct {
        const char* what;
        ListedMembers members;
        std::string rows, slicer;
    } cases[] = {
        {"accounts of every firm", AccountsListing{"", "1"}, accounts,
         " where( [Firma].[All], [ActX].[OBSx].[All].[1])"},
        {"accounts of one firm; names are inserted as they stand", AccountsListing{"פירמה]", "O'Brien"},
         accounts, " where( [Firma].[All].[פירמה]], [ActX].[OBSx].[All].[O'Brien])"},
        {"an OBS level, in any letter case", ObsListing{"OBS", "LeVeL2"},
         money + "non empty{[OBS].[LeVeL2].members }on rows", obs + ".[OBS]"},
        {"an OBS level under a sub-member", ObsListing{"OBS", "Level1", "2"}, level1, obs + ".[OBS].[2]"},
        {"an empty sub-member is wrapped like any other", ObsListing{"OBS", "Level1", ""}, level1,
         obs + ".[OBS].[]"},
        {"three letters are no level: cost centres", ObsListing{"OBS", "lev", "2"}, centres,
         obs + ".[OBS].[2]"},
        {"all cost centres take no sub-member", ObsListing{"", "Cost_Centers", "2"}, centres, obs},
        {"cost centres of an OBS number", ObsListing{"OBS", "Cost_Centers"}, centres, obs + ".[OBS]"},
        {"activities", ActivitiesListing{"OBS", "1"},
         money + "non empty{crossjoin ( [Activities].[ActivityCodes].[ActivityCode].members , "
                 "[Activities].[ActivityNames].[ActivityName].members)}on rows",
         obs + ".[OBS].[1]"},
        {"codes of a summary level; All in other letters is a firm",
         Summary{Summary::By::Code, "SuperSum2", "all", "OBS"},
         accX + "{  [SuperSumery].[SumeryCode].[SuperSum2].Allmembers }on rows",
         " where( [Firma].[All].[all], [ActX].[OBSx].[All].[OBS])"},
        {"names of a summary level; a sub-member follows the closed slicer",
         Summary{Summary::By::Name, "SuperSum2Name", "All", "OBS", "7"},
         accX + "{[SuperSumery].[SumeryName].[SuperSum2Name].Allmembers }on rows",
         " where( [Firma].[All], [ActX].[OBSx].[All].[OBS]).[7]"},
        {"summary groups; a firm follows the closed slicer", SummaryGroupsListing{"SuperSum1", "10"}, groups,
         " where( [Firma].[All]).[10]"},
        {"summary groups of a firm and an OBS number", SummaryGroupsOfObsListing{"SuperSum1", "10", "OBS"},
         groups, " where( [Firma].[All].[10], [ActX].[OBSx].[All].[OBS])"},
        {"account codes alone", AccountCodesListing{"All", "OBS"},
         accX + "non empty{  [Accounts].[AccountCodes].[AccountCode].members}on rows",
         " where( [Firma].[All], [ActX].[OBSx].[All].[OBS])"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ComposeListing({"LedgerFNC", c.members}), c.rows + " FROM LedgerFNC" + c.slicer) << c.what;
    }
    EXPECT_EQ(ComposeObsLevelsStatement("LedgerFNC", "OBS", "1"),
              "SELECT  NON Empty {[Measures] } ON COLUMNS, NON Empty { [OBS].Members } ON ROWS  From  "
              "[LedgerFNC]Where ([Actx].[OBSx].[All].[OBS].[1])");
}

} // namespace
} // namespace qel::ModSetCube
