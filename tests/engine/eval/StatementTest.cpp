#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qel::engine {
namespace {

std::string Answer(const std::string& statement) {
    try {
        return Show(RunStatement(CommonLedger(), statement));
    } catch (const EngineError& error) {
        return error.what();
    }
}

struct StatementCase {
    const char* what;
    const char* text;
    const char* grid;
};

void ExpectGrids(std::span<const StatementCase> cases) {
    for (const StatementCase& c : cases) {
        EXPECT_EQ(Answer(c.text), c.grid) << c.what;
    }
}

// Statements that the component composes for values, names and lists.
const StatementCase composedStatements[] = {
    {"three months of an account in a cost centre",
     "WITH MEMBER [Date].DateSel as '   SUM( "
     "LastPeriods(3,[Date].[All].[2024].[Q1].[3]),[Measures].[Amount])    ' "
     "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Finance where (  "
     "[ActX].[OBSx].[All].[1].[12],[Cost_Centers].[All].[100],[Accounts].[AccountCodes].[All].[4000])",
     "[Date].[DateSel]\n[SuperSumery].[SumeryCode].[All]: 3000.5"},
    {"every piece of the slicer, and an OBS member that occurs under two parents",
     "WITH MEMBER [Date].DateSel as '   SUM( "
     "LastPeriods(3,[Date].[All].[2024].[Q1].[3]),[Measures].[Amount])    '\r\n "
     "Member [Obs].Sel as ' SUM ({  , [OBS].[All].[North].[O''Neil] , [OBS].[All].[South].[O''Neil] }) '  "
     "SELECT  { "
     "[Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode].[SuperSum1].[2] }ON ROWS  From Finance where "
     "(  "
     "[Firma].[2],[Activities].[ActivityCodes].[ActivityCode].[7],[ActX].[OBSx].[All].[1].[12],[Obs].Sel,"
     "[Accounts].[AccountCodes].[All].[5000])",
     "[Date].[DateSel]\n[SuperSumery].[SumeryCode].[All].[2]: -300"},
    {"the OBS piece alone, without a number, one period, a group of the second level",
     "WITH MEMBER [Date].DateSel as '   SUM( "
     "LastPeriods(1,[Date].[All].[2023].[Q4].[12]),[Measures].[Amount])    ' "
     "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode].[SuperSum2].[10] }ON ROWS  From "
     "Finance "
     "where (  [ActX].[OBSx].[All].[1])",
     "[Date].[DateSel]\n[SuperSumery].[SumeryCode].[All].[1].[10]: 70"},
    {"a period without facts is empty, not 0",
     "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(2,[Date].[All].[2023].[Q3].[9]),[Measures].[Lines]) "
     "   ' "
     "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Finance where (  "
     "[ActX].[OBSx].[All].[1].[12])",
     "[Date].[DateSel]\n[SuperSumery].[SumeryCode].[All]: -"},
    {"the name of a summary group",
     " SELECT NON EMPTY { [Measures] } on columns,  NON EMPTY  "
     "{[SuperSumery].[SumeryName].[SuperSum2Name].Allmembers "
     " } ON ROWS  From [Finance] where (  [SuperSumery].[SumeryCode].[20] )",
     "[Measures].[Amount]\n[SuperSumery].[SumeryName].[All].[Costs].[Staff]: -700"},
    {"a group without facts has no name",
     " SELECT NON EMPTY { [Measures] } on columns,  NON EMPTY  "
     "{[SuperSumery].[SumeryName].[SuperSum2Name].Allmembers "
     " } ON ROWS  From [Finance] where (  [SuperSumery].[SumeryCode].[11] )",
     ""},
    {"accounts, code by name; an account whose lines make 0 is there, one without lines is not",
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
     "crossjoin([Accounts].[AccountCodes].[AccountCode]"
     ".members,[Accounts].[AccountNames].[AccountName].members)}on rows FROM Finance where( "
     "[Firma].[All].[1], "
     "[ActX].[OBSx].[All].[1])",
     "[AccX].[All]\n"
     "[Accounts].[AccountCodes].[All].[4000]+[Accounts].[AccountNames].[All].[Sales]: 6000.5\n"
     "[Accounts].[AccountCodes].[All].[5000]+[Accounts].[AccountNames].[All].[Wages & \"13th\"]: -400\n"
     "[Accounts].[AccountCodes].[All].[5100]+[Accounts].[AccountNames].[All].[O'Neil's rent]: 0"},
    {"OBS members of one level, slicer without parentheses",
     "SELECT {[MoneyType]} on columns, non empty{[OBS].[Level2].members }on rows FROM Finance WHERE "
     "[ActX].[OBSx].[All].[2].[21]",
     "[MoneyType].[All]\n[OBS].[All].[South].[Other]: 0.49"},
    {"all cost centres",
     "SELECT {[MoneyType]} on columns, non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM Finance "
     "WHERE "
     "[ActX].[OBSx].[All]",
     "[MoneyType].[All]\n[Cost_Centers].[All].[100]: 2670.5\n[Cost_Centers].[All].[200]: 2700\n"
     "[Cost_Centers].[All].[300]: 0.49"},
    {"activities, code by name",
     "SELECT {[MoneyType]} on columns, non empty{crossjoin ( "
     "[Activities].[ActivityCodes].[ActivityCode].members , "
     "[Activities].[ActivityNames].[ActivityName].members)}on rows FROM Finance WHERE "
     "[ActX].[OBSx].[All].[2].[21]",
     "[MoneyType].[All]\n[Activities].[ActivityCodes].[All].[7]+[Activities].[ActivityNames].[All].[7]: "
     "-0.01\n"
     "[Activities].[ActivityCodes].[All].[8]+[Activities].[ActivityNames].[All].[8]: 0.5"},
    {"the whole level of summary groups, with data or without",
     "SELECT {[AccX].[AccX].[All] } on columns,  {  [SuperSumery].[SumeryCode].[SuperSum2].Allmembers }on "
     "rows FROM "
     "Finance where( [Firma].[All], [ActX].[OBSx].[All].[1])",
     "[AccX].[All]\n[SuperSumery].[SumeryCode].[All].[1].[10]: "
     "6070.5\n[SuperSumery].[SumeryCode].[All].[1].[11]: -\n"
     "[SuperSumery].[SumeryCode].[All].[2].[20]: -700\n[SuperSumery].[SumeryCode].[All].[2].[21]: 0"},
    {"summary groups, code by name; names that two groups share do not mix",
     "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  crossjoin( "
     "[SuperSumery].[SumeryCode].[SuperSum2]"
     ".members, [SuperSumery].[SumeryName].[SuperSum2Name].members)}on rows FROM Finance where( "
     "[Firma].[All])",
     "[AccX].[All]\n"
     "[SuperSumery].[SumeryCode].[All].[1].[10]+[SuperSumery].[SumeryName].[All].[Income].[Trade]: 6071\n"
     "[SuperSumery].[SumeryCode].[All].[2].[20]+[SuperSumery].[SumeryName].[All].[Costs].[Staff]: -700\n"
     "[SuperSumery].[SumeryCode].[All].[2].[21]+[SuperSumery].[SumeryName].[All].[Costs].[Other]: -0.01"},
    {"the levels of OBS with data, no blank before Where, another letter case",
     "SELECT  NON Empty {[Measures] } ON COLUMNS, NON Empty { [OBS].Members } ON ROWS  From  [Finance]Where "
     "([Actx].[OBSx].[All].[2].[21])",
     "[Measures].[Amount]\n[OBS].[All]: 0.49\n[OBS].[All].[South]: 0.49\n[OBS].[All].[South].[Other]: 0.49"},
    {"a sub-member after the closing parenthesis is refused",
     "SELECT {[AccX].[AccX].[All] } on columns,  {  [SuperSumery].[SumeryCode].[SuperSum1].Allmembers }on "
     "rows FROM "
     "Finance where( [Firma].[All], [ActX].[OBSx].[All].[1]).[12]",
     "line 1, column 166: expected a function of a member or a set, such as Parent, Children or Members, "
     "found [12], "
     "near \"….[All].[1]).[12]\""},
};

TEST(Statement, AnswersWhatTheComponentSends) { ExpectGrids(composedStatements); }

const StatementCase cellMeanings[] = {
    {"no axes", "SELECT FROM Finance", "5370.99"},
    {"a cube's name in brackets and another case", "select from [FINANCE] where [Measures].[lines]", "10"},
    {"a sum of facts that is 0 is no empty cell",
     "SELECT FROM Finance WHERE [Accounts].[AccountCodes].[5100]", "0"},
    {"no facts: empty", "SELECT FROM Finance WHERE [Accounts].[AccountCodes].[4200]", "-"},
    {"two hierarchies over one column restrict each other",
     "SELECT {[SuperSumery].[SumeryCode].[1], [SuperSumery].[SumeryCode].[2]} ON 0, {[AccX].[1], [AccX].[2]} "
     "ON 1 "
     "FROM Finance WHERE [Accounts].[AccountNames].[Sales]",
     "[SuperSumery].[SumeryCode].[All].[1] | [SuperSumery].[SumeryCode].[All].[2]\n[AccX].[All].[1]: 6001 | "
     "-\n"
     "[AccX].[All].[2]: - | -"},
    {"a hierarchy without facts restricts nothing",
     "SELECT {[MoneyType].[Local], [MoneyType].[Other]} ON 0 FROM Finance",
     "[MoneyType].[All].[Local] | [MoneyType].[All].[Other]\n5370.99 | 5370.99"},
    {"members that overlap count in each, and once in their parent",
     "SELECT {[ActX].[OBSx].[1].[11], [ActX].[1].[12], [ActX].[1], [ActX].[OBSx]} ON 0 FROM Finance",
     "[ActX].[OBSx].[All].[1].[11] | [ActX].[OBSx].[All].[1].[12] | [ActX].[OBSx].[All].[1] | "
     "[ActX].[OBSx].[All]\n"
     "2670.5 | 5370.5 | 5370.5 | 5370.99"},
    {"a sum counts overlapping members and duplicates as often as they stand there",
     "WITH MEMBER [ActX].[Two] AS 'Sum({[ActX].[1].[11], [ActX].[1].[12]})' MEMBER [Firma].[Twice] AS "
     "Sum({[Firma].[1], [Firma].[1]}) SELECT {[Measures].[Amount], [Measures].[Lines]} ON 0, "
     "{([ActX].[Two], [Firma]), ([ActX].[1].[11], [Firma].[Twice]), ([ActX].[Two], [Firma].[Twice])} ON 1 "
     "FROM Finance",
     "[Measures].[Amount] | [Measures].[Lines]\n"
     "[ActX].[OBSx].[Two]+[Firma].[All]: 8041 | 14\n"
     "[ActX].[OBSx].[All].[1].[11]+[Firma].[Twice]: 5201 | 10\n"
     "[ActX].[OBSx].[Two]+[Firma].[Twice]: 16402 | 22"},
    {"LastPeriods is clipped at both ends and goes forward below 0",
     "WITH MEMBER [Measures].[Back] AS Count(LastPeriods(99, [Date].[2023].[Q1].[3])) MEMBER "
     "[Measures].[Forward] AS "
     "Count(LastPeriods(-2, [Date].[2024].[Q4].[10])) MEMBER [Measures].[Beyond] AS Count(LastPeriods(-50, "
     "[Date].[2024].[Q4].[11])) MEMBER [Measures].[Zero] AS Count(LastPeriods(0, [Date].[2024])) MEMBER "
     "[Measures].[Years] AS Sum(LastPeriods(5, [Date].[2024]), [Measures].[Lines]) SELECT "
     "{[Measures].[Back], "
     "[Measures].[Forward], [Measures].[Beyond], [Measures].[Zero], [Measures].[Years]} ON 0 FROM Finance",
     "[Measures].[Back] | [Measures].[Forward] | [Measures].[Beyond] | [Measures].[Zero] | "
     "[Measures].[Years]\n"
     "3 | 2 | 2 | 0 | 10"},
    {"a set in the slicer adds its tuples up",
     "SELECT {[Firma].[1], [Firma].[2]} ON 0 FROM Finance WHERE {[OBS].[North], [OBS].[South].[Other]}",
     "[Firma].[All].[1] | [Firma].[All].[2]\n5600.49 | 0.5"},
    {"what its tuples share counts once",
     "SELECT {[Firma].[1], [Firma].[2]} ON 0 FROM Finance WHERE {[OBS], [OBS].[North], "
     "[OBS].[North].[Haifa], "
     "[OBS].[North]}",
     "[Firma].[All].[1] | [Firma].[All].[2]\n5600.49 | -229.5"},
    {"so it does for tuples that overlap crosswise",
     "SELECT {[Measures].[Lines]} ON 0 FROM Finance WHERE {([Firma], [ActX].[1].[11]), ([Firma].[1], "
     "[ActX].[1].[12]), ([Firma].[1], [ActX].[2])}",
     "[Measures].[Lines]\n8"},
    {"a formula is computed over the slicer as a whole: a ratio of sums",
     "WITH MEMBER [Measures].[Share] AS [Measures].[Amount] / [Measures].[Lines] SELECT {[Measures].[Share]} "
     "ON 0 "
     "FROM Finance WHERE {[OBS].[North].[Haifa], [OBS].[North].[Other]}",
     "[Measures].[Share]\n~1200.1"},
    {"a formula that sets a member leaves the slicer's others",
     "WITH MEMBER [Measures].[First] AS ([Measures].[Lines], [Firma].[1]) SELECT {[Measures].[Lines], "
     "[Measures].[First]} ON 0 FROM Finance WHERE {([OBS].[South], [Firma].[2]), ([OBS].[North].[Haifa], "
     "[Firma].[1])}",
     "[Measures].[Lines] | [Measures].[First]\n7 | 5"},
    {"calculated members of the slicer add their values to what the others share",
     "WITH MEMBER [OBS].[Twice] AS 2 * [OBS].[North].[Haifa] SELECT {[Measures].[Lines]} ON 0 FROM Finance "
     "WHERE "
     "{[OBS].[Twice], [OBS].[South], [OBS].[South].[Other], [OBS].[Twice]}",
     "[Measures].[Lines]\n12"},
    {"measures of the slicer add up", "SELECT FROM Finance WHERE {[Measures].[Lines], [Measures].[Amount]}",
     "5380.99"},
    {"the slicer's set is what Filter, Order and TopCount read",
     "SELECT {TopCount([Cost_Centers].Children, 1, [Measures].[Lines]), Filter([Cost_Centers].Children, "
     "[Measures].[Amount] < 0), Order([Cost_Centers].Children, [Measures].[Amount], BASC)} ON 0, "
     "{[Measures].[Amount]} ON 1 FROM Finance WHERE {[Accounts].[AccountCodes].[5000], "
     "[Accounts].[AccountCodes].[5200]}",
     "[Cost_Centers].[All].[100] | [Cost_Centers].[All].[100] | [Cost_Centers].[All].[200] | "
     "[Cost_Centers].[All].[300] | [Cost_Centers].[All].[100] | [Cost_Centers].[All].[200] | "
     "[Cost_Centers].[All].[300]\n[Measures].[Amount]: -400 | -400 | -300 | -0.01 | -400 | -300 | -0.01"},
    {"a member that all tuples have is the current one",
     "WITH MEMBER [Measures].[x] AS IIf([OBS].CurrentMember IS [OBS].[South], 1, 2) SELECT FROM Finance "
     "WHERE "
     "{([Measures].[x], [OBS].[South], [Firma].[1]), ([Measures].[x], [OBS].[South], [Firma].[2])}",
     "1"},
    {"a slicer without a tuple leaves every cell empty",
     "WITH MEMBER [Measures].[x] AS 1 SELECT {[Measures].[x], [Measures].[Lines]} ON 0 FROM Finance WHERE "
     "Filter([OBS].[Level1].Members, 1 = 2)",
     "[Measures].[x] | [Measures].[Lines]\n- | -"},
    {"NON EMPTY under a slicer of several tuples",
     "SELECT NON EMPTY [OBS].[Level2].Members ON 0 FROM Finance WHERE {([Firma].[1], [Date].[2024].[Q2]), "
     "([Firma].[2], [Date].[2023])}",
     "[OBS].[All].[North].[Haifa] | [OBS].[All].[South].[Eilat] | [OBS].[All].[South].[Other]\n0 | 70 | "
     "-0.01"},
    {"Aggregate counts once what its tuples share; Sum does not",
     "WITH MEMBER [OBS].[Once] AS Aggregate({[OBS].[All], [OBS].[North], [OBS].[North]}) MEMBER [OBS].[Each] "
     "AS Sum({[OBS].[All], [OBS].[North], [OBS].[North]}) MEMBER [OBS].[Crosswise] AS "
     "Aggregate({[OBS].[South], "
     "[OBS].[South].[Other]} * {[Firma].[2], [Firma]}) SELECT {[OBS], [OBS].[North], [OBS].[Once], "
     "[OBS].[Each], "
     "[OBS].[Crosswise]} ON 0 FROM Finance WHERE [Measures].[Lines]",
     "[OBS].[All] | [OBS].[All].[North] | [OBS].[Once] | [OBS].[Each] | [OBS].[Crosswise]\n10 | 6 | 10 | 22 "
     "| 4"},
    {"Aggregate gives a ratio of sums in any order, Sum the sum of ratios when it is evaluated last",
     "WITH MEMBER [OBS].[A] AS Aggregate({[OBS].[North].[Haifa], [OBS].[North].[Other]}) MEMBER "
     "[Measures].[Share] AS [Measures].[Amount] / [Measures].[Lines] MEMBER [OBS].[B] AS "
     "Aggregate({[OBS].[North].[Haifa], [OBS].[North].[Other]}) MEMBER [OBS].[S] AS "
     "Sum({[OBS].[North].[Haifa], [OBS].[North].[Other]}) SELECT {[OBS].[A], [OBS].[B], [OBS].[S]} ON 0, "
     "{[Measures].[Share]} ON 1 FROM Finance",
     "[OBS].[A] | [OBS].[B] | [OBS].[S]\n[Measures].[Share]: ~1200.1 | ~1200.1 | ~3750.125"},
    {"a named set is evaluated once, in the slicer's context, whichever cell needs it first",
     "WITH SET Best AS TopCount([Cost_Centers].Children, 1, [Measures].[Amount]) MEMBER [Measures].[x] AS "
     "Sum(Best, [Measures].[Amount]) SELECT {[Measures].[x]} ON 0, {[Firma].[2], [Firma].[1], [Firma]} ON 1 "
     "FROM "
     "Finance WHERE [OBS].[North]",
     "[Measures].[x]\n[Firma].[All].[2]: -\n[Firma].[All].[1]: 3000\n[Firma].[All]: 3000"},
    {"one that the slicer uses is evaluated without it",
     "WITH SET Best AS TopCount([Cost_Centers].Children, 1, [Measures].[Amount]) MEMBER [Measures].[x] AS "
     "Count(Best) SELECT {[Measures].[x], [Measures].[Amount]} ON 0 FROM Finance WHERE Best",
     "[Measures].[x] | [Measures].[Amount]\n1 | 2700"},
    {"the higher solve order is evaluated first",
     "WITH MEMBER [Measures].[Share] AS [Measures].[Amount] / [Measures].[Lines], SOLVE_ORDER = 2 MEMBER "
     "[Firma].[Sum] "
     "AS [Firma].[1] + [Firma].[2], SOLVE_ORDER = 1 SELECT {[Measures].[Share]} ON 0, {[Firma].[Sum]} ON 1 "
     "FROM "
     "Finance WHERE [Accounts].[AccountCodes].[5000]",
     "[Measures].[Share]\n[Firma].[Sum]: ~-350"},
    {"of equal solve orders the one defined last is",
     "WITH MEMBER [Measures].[Share] AS [Measures].[Amount] / [Measures].[Lines] MEMBER [Firma].[Sum] AS "
     "[Firma].[1] + "
     "[Firma].[2] SELECT {[Measures].[Share]} ON 0, {[Firma].[Sum]} ON 1 FROM Finance WHERE "
     "[Accounts].[AccountCodes].[5000]",
     "[Measures].[Share]\n[Firma].[Sum]: ~-700"},
    {"arithmetic: exact while it can be, empty counts as 0 beside a number",
     "WITH MEMBER [Measures].[a] AS [Measures].[Amount] * -2 + 0.005 MEMBER [Measures].[b] AS "
     "[Measures].[Amount] + "
     "([Measures].[Amount], [Accounts].[AccountCodes].[4200]) MEMBER [Measures].[c] AS "
     "([Measures].[Amount], [Accounts].[AccountCodes].[4200]) * 5 MEMBER [Measures].[d] AS 1e3 - 2 SELECT "
     "{[Measures].[a], [Measures].[b], [Measures].[c], [Measures].[d]} ON 0 FROM Finance WHERE [Firma].[2]",
     "[Measures].[a] | [Measures].[b] | [Measures].[c] | [Measures].[d]\n459.005 | -229.5 | - | ~998"},
    {"NON EMPTY looks at calculated cells too",
     "WITH MEMBER [Measures].[Big] AS IIf([Measures].[Amount] > 100, [Measures].[Amount], NULL) SELECT NON "
     "EMPTY "
     "{[Measures].[Big]} ON 0, NON EMPTY [OBS].[Level2].Members ON 1 FROM Finance",
     "[Measures].[Big]\n[OBS].[All].[North].[Haifa]: 3000.5\n[OBS].[All].[North].[Other]: 3000"},
    {"NON EMPTY over several hierarchies keeps only combinations with facts",
     "SELECT NON EMPTY {[Measures].[Lines]} ON 0, NON EMPTY CrossJoin([Firma].[Firma].[Firma].Members, "
     "[OBS].[Level1].Members, "
     "{[Date].[2023], [Date].[2024].[Q2]}) ON 1 FROM Finance",
     "[Measures].[Lines]\n[Firma].[All].[1]+[OBS].[All].[North]+[Date].[All].[2024].[Q2]: 2\n"
     "[Firma].[All].[1]+[OBS].[All].[South]+[Date].[All].[2024].[Q2]: 1\n"
     "[Firma].[All].[2]+[OBS].[All].[South]+[Date].[All].[2023]: 1"},
    {"NON EMPTY on both axes under a calculated member that sums periods",
     "WITH MEMBER [Date].[Early] AS 'Sum(LastPeriods(2, [Date].[2024].[Q1].[2]))' SELECT NON EMPTY "
     "{[Cost_Centers].[Cost_Center].Members} ON 0, NON EMPTY "
     "{[Accounts].[AccountCodes].[AccountCode].Members} ON 1 "
     "FROM Finance WHERE [Date].[Early]",
     "[Cost_Centers].[All].[100] | [Cost_Centers].[All].[200]\n[Accounts].[AccountCodes].[All].[4000]: "
     "3000.5 | -\n"
     "[Accounts].[AccountCodes].[All].[5000]: -400 | -300"},
    {"an axis that becomes empty leaves no cells",
     "SELECT {[Measures].Members} ON 0, NON EMPTY {[Accounts].[AccountCodes].[4200]} ON 1 FROM Finance",
     "[Measures].[Amount] | [Measures].[Lines]"},
};

TEST(Statement, GivesCellsTheirMeaning) { ExpectGrids(cellMeanings); }

/// Sets are printed without cells, one position after the other.
std::string Positions(const std::string& set, const std::string& with = "") {
    const std::string text = Answer(with + " SELECT " + set + " ON 0 FROM Finance");
    return text.substr(0, text.find('\n'));
}

TEST(Statement, BuildsSets) {
    const StatementCase cases[] = {
        {"members and descendants come as the tree stands", "Hierarchize([SuperSumery].[SumeryCode].Members)",
         "[SuperSumery].[SumeryCode].[All] | [SuperSumery].[SumeryCode].[All].[1] | "
         "[SuperSumery].[SumeryCode].[All].[1].[10] | [SuperSumery].[SumeryCode].[All].[1].[11] | "
         "[SuperSumery].[SumeryCode].[All].[2] | [SuperSumery].[SumeryCode].[All].[2].[20] | "
         "[SuperSumery].[SumeryCode].[All].[2].[21]"},
        {"children, siblings, first and last",
         "{[OBS].[North].Children, [OBS].[South].FirstChild.NextMember, "
         "[OBS].[South].[Eilat].LastSibling, [OBS].[South].[Eilat].Parent.PrevMember, [OBS].[All].Parent}",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[North].[O'Neil] | [OBS].[All].[North].[Other] | "
         "[OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other] | [OBS].[All].[North]"},
        {"ranges run in member order whichever end comes first, over parents",
         "{[Date].[2024].[Q1].[1] : [Date].[2023].[Q4].[12]}",
         "[Date].[All].[2023].[Q4].[12] | [Date].[All].[2024].[Q1].[1]"},
        {"lag, lead, beyond the level",
         "{[Date].[2024].[Q1].[1].Lag(1), [Date].[2024].Lead(1), [Date].[2024].Lead(-1)}",
         "[Date].[All].[2023].[Q4].[12] | [Date].[All].[2023]"},
        {"to date", "{YTD([Date].[2024].[Q1].[2]), PeriodsToDate([Date].[Quarter], [Date].[2023].[Q2].[5])}",
         "[Date].[All].[2024].[Q1].[1] | [Date].[All].[2024].[Q1].[2] | [Date].[All].[2023].[Q2].[4] | "
         "[Date].[All].[2023].[Q2].[5]"},
        {"the same period a year ago, an ancestor, by level and by steps",
         "{ParallelPeriod([Date].[Year], 1, [Date].[2024].[Q2].[5]), Ancestor([Date].[2024].[Q2].[5], "
         "[Date].[Year]), "
         "Ancestor([Date].[2024].[Q2].[5], 1), ParallelPeriod([Date].[Year], 1, [Date].[2023])}",
         "[Date].[All].[2023].[Q2].[5] | [Date].[All].[2024] | [Date].[All].[2024].[Q2]"},
        {"descendants by level, distance and flag",
         "{Descendants([OBS].[South], [OBS].[Level2]), Descendants([OBS], 1), Descendants([OBS].[North], , "
         "LEAVES), "
         "Descendants([OBS].[South], 0, self_and_after)}",
         "[OBS].[All].[South].[Eilat] | [OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other] | "
         "[OBS].[All].[North] | [OBS].[All].[South] | [OBS].[All].[North].[Haifa] | "
         "[OBS].[All].[North].[O'Neil] | "
         "[OBS].[All].[North].[Other] | [OBS].[All].[South] | [OBS].[All].[South].[Eilat] | "
         "[OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other]"},
        {"union drops duplicates, braces and ALL keep them",
         "{[Firma].[1] , Union({[Firma].[1], [Firma].[2]}, {[Firma].[1]}), Union({[Firma].[2]}, "
         "{[Firma].[2]}, ALL), "
         "Distinct({[Firma].[2], [Firma].[2]}) + {[Firma].[2]}}",
         "[Firma].[All].[1] | [Firma].[All].[1] | [Firma].[All].[2] | [Firma].[All].[2] | [Firma].[All].[2] "
         "| "
         "[Firma].[All].[2]"},
        {"except, intersect, head, tail, subset, item",
         "{Except([Cost_Centers].[Cost_Center].Members, {[Cost_Centers].[200]}), "
         "Intersect({[Cost_Centers].[300]}, "
         "[Cost_Centers].Children), Head([Cost_Centers].Children), Tail([Cost_Centers].Children, 2), "
         "Subset([Cost_Centers].Children, 1, 1), [Cost_Centers].Children.Item(2)}",
         "[Cost_Centers].[All].[100] | [Cost_Centers].[All].[300] | [Cost_Centers].[All].[300] | "
         "[Cost_Centers].[All].[100] | [Cost_Centers].[All].[200] | [Cost_Centers].[All].[300] | "
         "[Cost_Centers].[All].[200] | [Cost_Centers].[All].[300]"},
        {"filter by number, text, emptiness and identity",
         "{Filter([OBS].[Level2].Members, [Measures].[Amount] < 0 AND NOT [OBS].CurrentMember.Name = "
         "\"Wages\"), "
         "Filter([OBS].[Level2].Members, [OBS].CurrentMember.Name = \"Other\" XOR 1 = 2), "
         "Filter([OBS].Children, [OBS].CurrentMember IS [OBS].[South] OR "
         "IsEmpty(([Measures].[Lines], [Date].[2024])))}",
         "[OBS].[All].[North].[O'Neil] | [OBS].[All].[South].[O'Neil] | [OBS].[All].[North].[Other] | "
         "[OBS].[All].[South].[Other] | [OBS].[All].[South]"},
        {"order within families and across them, by text, top and bottom",
         "{Order([OBS].[Level2].Members, [Measures].[Amount], DESC), Order([OBS].[Level2].Members, "
         "[Measures].[Amount], BDESC)}",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[North].[Other] | [OBS].[All].[North].[O'Neil] | "
         "[OBS].[All].[South].[Eilat] | [OBS].[All].[South].[Other] | [OBS].[All].[South].[O'Neil] | "
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[North].[Other] | [OBS].[All].[South].[Eilat] | "
         "[OBS].[All].[South].[Other] | [OBS].[All].[South].[O'Neil] | [OBS].[All].[North].[O'Neil]"},
        {"elements of two shapes do not make a set",
         "{Order([Cost_Centers].Children, [Cost_Centers].CurrentMember.Caption, BDESC), "
         "TopCount([OBS].[Level2].Members "
         "* {[Firma].[1]}, 0, 1), BottomCount([Cost_Centers].Children, 1, [Measures].[Amount])}",
         "line 1, column 224: a set of [Cost_Centers] takes no element of [OBS], [Firma], near \"…on, "
         "BDESC), "
         "TopCount([OBS].[Level2].Members * {[…\""},
        {"top and bottom counts",
         "{TopCount([Cost_Centers].Children, 2, [Measures].[Amount]), BottomCount([Cost_Centers].Children, "
         "1, "
         "[Measures].[Amount])}",
         "[Cost_Centers].[All].[200] | [Cost_Centers].[All].[100] | [Cost_Centers].[All].[300]"},
        {"hierarchies of one dimension meet only where they share codes; of two dimensions everywhere",
         "CrossJoin({[Accounts].[AccountCodes].[4000], [Accounts].[AccountCodes].[All]}, "
         "{[Accounts].[AccountNames].[Sales, export], [Accounts].[AccountNames].[Sales]}) * {[Firma].[1]}",
         "[Accounts].[AccountCodes].[All].[4000]+[Accounts].[AccountNames].[All].[Sales]+[Firma].[All].[1] | "
         "[Accounts].[AccountCodes].[All]+[Accounts].[AccountNames].[All].[Sales, export]+[Firma].[All].[1] "
         "| "
         "[Accounts].[AccountCodes].[All]+[Accounts].[AccountNames].[All].[Sales]+[Firma].[All].[1]"},
        {"members of a hierarchy come as the tree stands, calculated ones behind their siblings",
         "{[OBS].Members, [OBS].AllMembers}",
         "[OBS].[All] | [OBS].[All].[North] | [OBS].[All].[North].[Haifa] | [OBS].[All].[North].[O'Neil] | "
         "[OBS].[All].[North].[Other] | [OBS].[All].[South] | [OBS].[All].[South].[Eilat] | "
         "[OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other] | "
         "[OBS].[All] | [OBS].[All].[North] | [OBS].[All].[North].[Haifa] | [OBS].[All].[North].[O'Neil] | "
         "[OBS].[All].[North].[Other] | [OBS].[All].[North].[New] | [OBS].[All].[South] | "
         "[OBS].[All].[South].[Eilat] | [OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other] | "
         "[OBS].[All].[South].[New] | [OBS].[Top]"},
        {"a calculated member stands below the one that its name gives",
         "{[OBS].[South].[New], [OBS].[All].[North].[new].Parent, [OBS].[Level2].AllMembers, "
         "[OBS].[North].[New]."
         "FirstSibling, [OBS].[Level1].AllMembers}",
         "[OBS].[All].[South].[New] | [OBS].[All].[North] | [OBS].[All].[North].[Haifa] | "
         "[OBS].[All].[North].[O'Neil] | [OBS].[All].[North].[Other] | [OBS].[All].[South].[Eilat] | "
         "[OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other] | [OBS].[All].[North].[New] | "
         "[OBS].[All].[South].[New] | [OBS].[All].[North].[Haifa] | [OBS].[All].[North] | "
         "[OBS].[All].[South]"},
        {"and has no members to date, or beside it",
         "{[Date].[2024].[Q1].[Half], PeriodsToDate([Date].[Year], [Date].[2024].[Q1].[Half]), "
         "ParallelPeriod([Date].[Year], 1, [Date].[2024].[Q1].[Half]), Ancestor([Date].[2024].[Q1].[Half], "
         "[Date].[Year]), Descendants([Date].[2024].[Q1].[Half], 1, SELF_AND_BEFORE)}",
         "[Date].[All].[2024].[Q1].[Half] | [Date].[All].[2024] | [Date].[All].[2024].[Q1].[Half]"},
        {"order within families over tuples: hierarchy by hierarchy, each under the members before it",
         "Order({[OBS].[South].[Other], [OBS].[North], [OBS].[South]} * [Firma].Children, "
         "[Measures].[Amount], DESC)",
         "[OBS].[All].[North]+[Firma].[All].[1] | [OBS].[All].[North]+[Firma].[All].[2] | "
         "[OBS].[All].[South]+[Firma].[All].[1] | [OBS].[All].[South]+[Firma].[All].[2] | "
         "[OBS].[All].[South].[Other]+[Firma].[All].[2] | [OBS].[All].[South].[Other]+[Firma].[All].[1]"},
        {"items of tuples and of tuples of sets",
         "{([Firma].[1], [OBS].[South]).Item(1), ([Firma].[1], [OBS].[North]).Item(1).FirstChild, "
         "([Firma].Children * [OBS].Children).Item(3).Item(1)}",
         "[OBS].[All].[South] | [OBS].[All].[North].[Haifa] | [OBS].[All].[South]"},
        {"leaves down to a level",
         "{Descendants([OBS].[South], [OBS].[Level2], LEAVES), Descendants([OBS], "
         "[OBS].[Level1], LEAVES), Descendants([OBS].[North], 1, LEAVES)}",
         "[OBS].[All].[South].[Eilat] | [OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other] | "
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[North].[O'Neil] | [OBS].[All].[North].[Other]"},
        {"a tuple of sets is a cross join", "({[Firma].[1], [Firma].[2]}, {[AccX].[1]})",
         "[Firma].[All].[1]+[AccX].[All].[1] | [Firma].[All].[2]+[AccX].[All].[1]"},
    };
    const std::string with =
        "WITH MEMBER [OBS].[North].[New] AS 1 MEMBER [OBS].[All].[South].[New] AS 2 MEMBER "
        "[OBS].[Top] AS 3 MEMBER [Date].[2024].[Q1].[Half] AS 4 ";
    for (const StatementCase& c : cases) {
        EXPECT_EQ(Positions(c.text, with), c.grid) << c.what;
    }
    EXPECT_EQ(
        Positions("{[Firma].AllMembers, Ours}", "WITH SET Ours AS '{[Firma].[2]}' MEMBER [Firma].X AS 1"),
        "[Firma].[All] | [Firma].[All].[1] | [Firma].[All].[2] | [Firma].[X] | [Firma].[All].[2]");
}

TEST(Statement, ComputesNumbers) {
    const struct {
        const char *formula, *value;
    } cases[] = {
        {"Avg([OBS].[Level2].Members, [Measures].[Lines])", "~1.6666666666666667"},
        {"Avg({[Accounts].[AccountCodes].[4000], [Accounts].[AccountCodes].[4200]}, [Measures].[Amount])",
         "~6001"},
        {"Min([OBS].[Level2].Members, [Measures].[Amount])", "-400"},
        {"Max([OBS].[Level2].Members, [Measures].[Amount])", "3000.5"},
        {"Count([Accounts].[AccountCodes].Children)", "6"},
        {"[Accounts].[AccountCodes].Children.Count", "6"},
        {"Count([Accounts].[AccountCodes].Children * {[Measures].[Amount]}, EXCLUDEEMPTY)", "5"},
        {"Aggregate([OBS].[Level2].Members, [Measures].[Amount])", "5370.99"},
        {"Sum([OBS].[Level1].Members * [Firma].Children, [Measures].[Amount] * 2)", "10741.98"},
        {"Sum(Filter([OBS].[Level2].Members, [Measures].[Amount] > 0), [Measures].[Amount])", "6070.99"},
        {"Sum({}, [Measures].[Amount])", "-"},
        {"CoalesceEmpty(([Measures].[Amount], [Accounts].[AccountCodes].[4200]), -3.50)", "-3.5"},
        {"IIf(IsEmpty([Measures].[Lines]), 1, 2)", "2"},
        {"([Measures].[Amount], [OBS].[All].Parent)", "-"},
        {"Abs(([Measures].[Amount], [OBS].[South]))", "229.51"},
        {"1 / 0", "~inf"},
        {"IIf(0 / 0 < -1 / 0 AND NOT 0 / 0 > 0 AND 0 / 0 = 0 / 0, 1, 2)", "1"},
        {"-(-0.1) + 0.2", "0.3"},
        {"9223372036854775807 + 1", "~9.223372036854776e+18"},
        {"3037000500 * 3037000500", "~9.22337203700025e+18"},
        {"90071992547409.93", "90071992547409.94"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Answer(std::string("WITH MEMBER [Measures].[x] AS ") + c.formula +
                         " SELECT FROM Finance WHERE [Measures].[x]"),
                  c.value)
            << c.formula;
    }
}

TEST(Statement, StopsFormulasThatDoubleTheWork) {
    std::string text = "WITH ";
    for (int i = 0; i < 40; ++i) {
        const std::string next = "[Measures].A" + std::to_string(i + 1);
        text += fmt::format("MEMBER [Measures].A{} AS {} + {} ", i, next, next);
    }
    text += "MEMBER [Measures].A40 AS 1 SELECT {[Measures].A0} ON 0 FROM Finance";
    try {
        RunStatement(CommonLedger(), text);
        FAIL() << "no error";
    } catch (const EngineError& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::TooLarge) << error.what();
    }
}

TEST(Statement, RejectsWhatCannotBeResolved) {
    const struct {
        const char* what;
        const char* text;
        ErrorKind kind;
        const char* message;
    } cases[] = {
        {"another cube", "SELECT FROM Sales", ErrorKind::UnknownCube,
         "line 1, column 13: there is no cube [Sales]; the open cube is [Finance]"},
        {"an unknown function", "SELECT {Ytdd([a])} ON 0 FROM Finance", ErrorKind::InvalidExpression,
         "line 1, column 9: there is no function Ytdd"},
        {"a wrong number of arguments", "SELECT Head() ON 0 FROM Finance", ErrorKind::InvalidExpression,
         "line 1, column 8: Head takes 1 to 2 arguments, not 0"},
        {"a level as a set", "SELECT [OBS].[Level1] ON 0 FROM Finance", ErrorKind::InvalidExpression,
         "line 1, column 8: expected a set, found a level; its members are written with .Members"},
        {"a number as a set", "SELECT {1} ON 0 FROM Finance", ErrorKind::InvalidExpression,
         "line 1, column 9: expected a set, found a number"},
        {"a hierarchy on two axes", "SELECT {[Firma].[1]} ON 0, [Firma].Children ON 1 FROM Finance",
         ErrorKind::InvalidExpression,
         "line 1, column 36: the hierarchy [Firma] stands on another axis or in the slicer already"},
        {"a hierarchy twice in the slicer", "SELECT FROM Finance WHERE ([Firma].[1], [Firma].[2])",
         ErrorKind::InvalidExpression, "line 1, column 41: the hierarchy [Firma] stands in the tuple twice"},
        {"a formula that needs itself",
         "WITH MEMBER [Date].X AS [Measures].[Amount] SELECT {[Date].X} ON 0 FROM Finance",
         ErrorKind::InvalidExpression,
         "line 1, column 13: the calculated member needs itself, or more than 400 expressions inside one "
         "another, to be evaluated"},
        {"a sum that needs itself",
         "WITH MEMBER [Date].X AS Sum({[Date].X}) SELECT {[Date].X} ON 0 FROM Finance",
         ErrorKind::InvalidExpression,
         "line 1, column 13: the calculated member needs itself, or more than 400 expressions inside one "
         "another, to be evaluated"},
        {"a member defined twice", "WITH MEMBER [Firma].X AS 1 MEMBER [Firma].x AS 2 SELECT FROM Finance",
         ErrorKind::InvalidExpression, "line 1, column 35: the calculated member x is defined twice"},
        {"two sets of one name", "WITH SET s AS {[Firma].[1]} SET S AS {[Firma].[2]} SELECT FROM Finance",
         ErrorKind::InvalidExpression, "line 1, column 33: the set S is defined twice"},
        {"a set that needs itself",
         "WITH SET s AS Filter([Firma].Children, [Measures].[x] > 0) MEMBER [Measures].[x] AS Count(s) "
         "SELECT s ON 0 "
         "FROM Finance",
         ErrorKind::InvalidExpression, "line 1, column 10: the set s needs itself to be evaluated"},
        {"a calculated member below the last level", "WITH MEMBER [Firma].[1].[x] AS 1 SELECT FROM Finance",
         ErrorKind::InvalidExpression,
         "line 1, column 13: no level lies below [Firma].[All].[1], so the member x cannot stand there"},
        {"a calculated member below another",
         "WITH MEMBER [OBS].[x] AS 1 MEMBER [OBS].[x].[y] AS 1 SELECT FROM Finance",
         ErrorKind::InvalidExpression, "line 1, column 35: a calculated member has no members below it"},
        {"the current member of a hierarchy of which the slicer has several",
         "SELECT Filter({[Firma].[1]}, [OBS].CurrentMember IS [OBS]) ON 0 FROM Finance WHERE {[OBS].[North], "
         "[OBS].[South]}",
         ErrorKind::InvalidExpression,
         "line 1, column 30: [OBS] has no current member here: the slicer or an Aggregate leaves several of "
         "its "
         "members, or none"},
        {"a level that depends on cells",
         "WITH MEMBER [Measures].[a] AS 1 MEMBER [Measures].[x] AS "
         "Count([Date].Levels([Measures].[x]).Members) "
         "SELECT FROM Finance WHERE [Measures].[x]",
         ErrorKind::InvalidExpression,
         "line 1, column 78: expected the number of a level, found one that depends on cells"},
        {"a level of another hierarchy", "SELECT Descendants([OBS].[North], [Date].[Year]) ON 0 FROM Finance",
         ErrorKind::InvalidExpression,
         "line 1, column 35: the member and the level are of different hierarchies"},
        {"a range over two levels", "SELECT {[Date].[2023] : [Date].[2024].[Q1]} ON 0 FROM Finance",
         ErrorKind::InvalidExpression, "line 1, column 25: the two ends of a range are not on one level"},
    };
    for (const auto& c : cases) {
        try {
            RunStatement(CommonLedger(), c.text);
            ADD_FAILURE() << c.what << ": no error";
        } catch (const EngineError& error) {
            EXPECT_EQ(error.Kind(), c.kind) << c.what;
            const std::string message = error.what();
            EXPECT_EQ(message.substr(0, message.find(", near \"")), c.message) << c.what;
        }
    }
}

TEST(Statement, RefusesAnswersBeyondMemory) {
    std::string set = "[Date].[Month].Members";
    for (const char* other :
         {"[OBS].Members", "[Accounts].[AccountCodes].Members", "[SuperSumery].[SumeryCode].Members",
          "[ActX].Members", "[Cost_Centers].Members", "[Activities].Members", "[Firma].Members"}) {
        set += std::string(" * ") + other;
    }
    for (const std::string& text :
         {"SELECT " + set + " ON 0 FROM Finance",
          std::string("SELECT [Date].Members * [OBS].Members * [Firma].Members ON 0, "
                      "[Accounts].[AccountCodes].Members * [ActX].Members * "
                      "[SuperSumery].[SumeryCode].Members * [Cost_Centers].Members * "
                      "[Activities].[ActivityCodes].Members * [AccX].Members * [MoneyType].Members "
                      "ON 1 FROM Finance")}) {
        try {
            RunStatement(CommonLedger(), text);
            ADD_FAILURE() << "no error";
        } catch (const EngineError& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::TooLarge) << error.what();
        }
    }
}

} // namespace
} // namespace qel::engine
