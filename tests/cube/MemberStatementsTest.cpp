#include "cube/MemberStatements.h"

#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

constexpr const char* noStatement = "(none)";

struct StatementCase {
    const char* what;
    MemberListing listing;
    std::string statement;
};

const std::string none(1, '\0');

// Statements are compared to the blank: the provider's cache and the suite's own logs know them as they
// stand.
const StatementCase cellsetCases[] = {
    {"accounts of every firm",
     {"LedgerFNC", 1, "", "1", none, "", 1},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "crossjoin([Accounts].[AccountCodes].[AccountCode].members,[Accounts].[AccountNames].[AccountName]."
     "members)}on "
     "rows FROM LedgerFNC where( [Firma].[All], [ActX].[OBSx].[All].[1])"},
    {"accounts of one firm; names are inserted as they stand",
     {"LedgerFNC", 1, "פירמה]", "O'Brien", none, "", 1},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "crossjoin([Accounts].[AccountCodes].[AccountCode].members,[Accounts].[AccountNames].[AccountName]."
     "members)}on "
     "rows FROM LedgerFNC where( [Firma].[All].[פירמה]], [ActX].[OBSx].[All].[O'Brien])"},
    {"accounts in another mode", {"LedgerFNC", 1, "", "1", none, "", 2}, noStatement},
    {"an OBS level, in any letter case",
     {"LedgerFNC", 2, "OBS", "LeVeL2"},
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[LeVeL2].members }on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS]"},
    {"an OBS level under a sub-member",
     {"LedgerFNC", 2, "OBS", "Level1", "2"},
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[Level1].members }on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[2]"},
    {"an empty sub-member is wrapped like any other",
     {"LedgerFNC", 2, "OBS", "Level1", ""},
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[Level1].members }on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[]"},
    {"three letters are no level: cost centres",
     {"LedgerFNC", 2, "OBS", "lev", "2"},
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM "
     "LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[2]"},
    {"all cost centres take no sub-member",
     {"LedgerFNC", 2, "", "Cost_Centers", "2"},
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM "
     "LedgerFNC WHERE "
     "[ActX].[OBSx].[All]"},
    {"activities",
     {"LedgerFNC", 3, "OBS", "", "1"},
     "SELECT {[MoneyType]} on columns, non empty{crossjoin ( "
     "[Activities].[ActivityCodes].[ActivityCode].members , "
     "[Activities].[ActivityNames].[ActivityName].members)}on rows FROM LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS].[1]"},
    {"codes of a summary level; All in other letters is a firm",
     {"LedgerFNC", 4, "all", "OBS", none, "SuperSum2"},
     "SELECT {[AccX].[AccX].[All] } on columns,  {  [SuperSumery].[SumeryCode].[SuperSum2].Allmembers }on "
     "rows FROM "
     "LedgerFNC where( [Firma].[All].[all], [ActX].[OBSx].[All].[OBS])"},
    {"names of a summary level; a sub-member follows the closed slicer",
     {"LedgerFNC", 5, "All", "OBS", "7", "SuperSum2Name"},
     "SELECT {[AccX].[AccX].[All] } on columns,  {[SuperSumery].[SumeryName].[SuperSum2Name].Allmembers }on "
     "rows FROM "
     "LedgerFNC where( [Firma].[All], [ActX].[OBSx].[All].[OBS]).[7]"},
    {"summary groups; a firm follows the closed slicer",
     {"LedgerFNC", 6, "10", "OBS", none, "SuperSum1"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  crossjoin( "
     "[SuperSumery].[SumeryCode].[SuperSum1].members, "
     "[SuperSumery].[SumeryName].[SuperSum1Name].members)}on rows FROM LedgerFNC where( [Firma].[All]).[10]"},
    {"no such kind", {"LedgerFNC", 7, "", "1", none, "SuperSum1", 1}, noStatement},
};

const StatementCase recordsetCases[] = {
    {"accounts in another mode", {"LedgerFNC", 1, "", "1"}, noStatement},
    {"cost centres as a cellset has them",
     {"LedgerFNC", 2, "OBS", "Cost_Centers"},
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM "
     "LedgerFNC WHERE "
     "[ActX].[OBSx].[All].[OBS]"},
    {"summary groups of a firm and an OBS number, whatever the sub-member",
     {"LedgerFNC", 4, "10", "OBS", "7", "SuperSum1"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  crossjoin( "
     "[SuperSumery].[SumeryCode].[SuperSum1].members, "
     "[SuperSumery].[SumeryName].[SuperSum1Name].members)}on rows FROM LedgerFNC where( [Firma].[All].[10], "
     "[ActX].[OBSx].[All].[OBS])"},
    {"account codes alone, in any mode",
     {"LedgerFNC", 5, "All", "OBS"},
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "[Accounts].[AccountCodes].[AccountCode].members}on rows "
     "FROM LedgerFNC where( [Firma].[All], [ActX].[OBSx].[All].[OBS])"},
    {"a cellset's last kind is none here", {"LedgerFNC", 6, "", "OBS", none, "SuperSum1"}, noStatement},
};

TEST(MemberStatements, AreExactToTheBlank) {
    for (const auto& c : cellsetCases) {
        EXPECT_EQ(ComposeCellsetStatement(c.listing).value_or(noStatement), c.statement)
            << "cellset: " << c.what;
    }
    for (const auto& c : recordsetCases) {
        EXPECT_EQ(ComposeRecordsetStatement(c.listing).value_or(noStatement), c.statement)
            << "recordset: " << c.what;
    }
    EXPECT_EQ(ComposeObsLevelsStatement("LedgerFNC", "OBS", "1"),
              "SELECT  NON Empty {[Measures] } ON COLUMNS, NON Empty { [OBS].Members } ON ROWS  From  "
              "[LedgerFNC]Where "
              "([Actx].[OBSx].[All].[OBS].[1])");
}

} // namespace
} // namespace qel::ModSetCube
