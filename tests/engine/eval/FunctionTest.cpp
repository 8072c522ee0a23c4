#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"

#include <gtest/gtest.h>

// Functions one by one: what they give, and how they refuse.

namespace qel::engine {
namespace {

/// The answer, or the error without its place.
std::string Answer(const std::string& statement) {
    try {
        return Show(RunStatement(CommonLedger(), statement));
    } catch (const EngineError& error) {
        const std::string message = error.what();
        const std::size_t start = message.starts_with("line ") ? message.find(": ") + 2 : 0;
        return message.substr(start, message.find(", near \"") - start);
    }
}

const char* const definitions = "WITH MEMBER [OBS].[North].[New] AS 1 MEMBER [OBS].[Top] AS 3 "
                                "MEMBER [Measures].[Word] AS 'IIf([Measures].[Lines] > 4, \"many\", NULL)' "
                                "SET [Firms] AS [Firma].Children ";

struct Expected {
    const char *formula, *answer;
};

void ExpectValues(std::span<const Expected> cases) {
    for (const Expected& c : cases) {
        EXPECT_EQ(Answer(std::string(definitions) + "MEMBER [Measures].[x] AS " + c.formula +
                         " SELECT FROM Finance WHERE [Measures].[x]"),
                  c.answer)
            << c.formula;
    }
}

void ExpectSets(std::span<const Expected> cases) {
    for (const Expected& c : cases) {
        const std::string answer =
            Answer(std::string(definitions) + "SELECT " + c.formula + " ON 0 FROM Finance");
        EXPECT_EQ(answer.substr(0, answer.find('\n')), c.answer) << c.formula;
    }
}

TEST(Function, Texts) {
    const Expected cases[] = {
        {"\"a\" || \"b\" || [OBS].[North].Name", "'abNorth'"},
        {"Left(\"שכירות\", 2) || Right(\"abc\", 2) || Mid(\"abcde\", 2, 3) || Mid(\"abc\", 3) || Left(\"a\", "
         "9)",
         "'שכbcbcdca'"},
        {"Len(\"שכירות\") + InStr(\"abcabc\", \"c\") + InStr(4, \"abcabc\", \"c\") + InStr(\"abc\", \"B\")",
         "15"},
        {"UCase(\"éa9ß\") || LCase(\"ÉA9\") || Trim(\" a \") || \"|\" || LTrim(\" a \") || \"|\" || RTrim(\" "
         "a \")",
         "'ÉA9ßéa9a|a | a'"},
        {"[Measures].[Word] || \"!\"", "'many!'"},
        {"([Measures].[Word], [OBS].[South]) || \"!\"", "'!'"},
        {"IIf([Measures].[Word] = \"many\", 1, 2)", "1"},
        {"Count(Filter([OBS].Children, [Measures].[Word] = \"\"))", "1"},
        {"[Measures].[Word] + 1", "expected a number, found the text \"many\""},
        {"[Measures].[Lines] || \"a\"", "expected a text, found a number; Format writes a number as a text"},
        {"1 || \"a\"", "expected a text, found a number; Format writes a number as a text"},
        {"\"a\" + \"b\"", "expected a number, found a text; texts are joined with ||"},
        {"Sum([Firma].Children, [Measures].[Word])", "expected a number, found the text \"many\""},
        {"Left(\"a\", -1)", "a length cannot be below 0"},
        {"Mid(\"a\", 0)", "a place in a text starts at 1"},
        {"Generate([OBS].Children, [OBS].CurrentMember.Name, \", \")", "'North, South'"},
        {"MemberToStr([OBS].[North]) || TupleToStr(([OBS], [Firma].[1])) || SetToStr({[Firma].[1], [Firma]})",
         "'[OBS].[All].[North]([OBS].[All], [Firma].[All].[1]){[Firma].[All].[1], [Firma].[All]}'"},
        {"StrToMember(\"[OBS].\" || \"[South]\").Name", "'South'"},
        {"StrToTuple(\"([OBS].[South], [Firma].[2], [Measures].[Amount])\")", "-229.5"},
        {"Count(StrToSet(\"{Firms, [Firma]}\", CONSTRAINED))", "3"},
        {"StrToMember([Measures].[Word])", "expected a text that does not depend on cells"},
        {"StrToMember(\"[OBS].\").Name", "the text \"[OBS].\" is no expression: line 1, column 7: expected a "
                                         "name, found the end of the statement"},
        {"[OBS].[South].Properties(\"caption\") || [OBS].[South].Properties(\"LEVEL_UNIQUE_NAME\") || "
         "[OBS].[South].Level.Name || [OBS].CurrentMember.Level.Name || [Accounts].[AccountCodes].Name || "
         "[Accounts].UniqueName || [OBS].[Level2].UniqueName || [Accounts].[AccountNames].Dimension.Name",
         "'South[OBS].[Level1]Level1(All)AccountCodes[Accounts][OBS].[Level2]Accounts'"},
        {"[OBS].Properties(\"Colour\")",
         "members have no property Colour; they have CAPTION, NAME, KEY, UNIQUE_NAME, PARENT_UNIQUE_NAME, "
         "LEVEL_UNIQUE_NAME and HIERARCHY_UNIQUE_NAME"},
    };
    ExpectValues(cases);
}

TEST(Function, Formats) {
    const Expected cases[] = {
        {"1234.565, \"Standard\"", "'1,234.57'"},
        {"-1234567, \"#,##0;(#,##0);zero\"", "'(1,234,567)'"},
        {"0, \"#,##0;(#,##0);zero\"", "'zero'"},
        {"NULL, \"0;0;0;none\"", "'none'"},
        {"NULL, \"0.00\"", "''"},
        {"0.12345, \"Percent\"", "'12.35%'"},
        {"-0.004, \"0.00\"", "'0.00'"},
        {"9.995, \"0.00\"", "'10.00'"},
        {"1 / 3, \"0.###\"", "'0.333'"},
        {"5, \"#.#\"", "'5.'"},
        {"0.5, \"#.00\"", "'.50'"},
        {"12345678, \"#,##0,,.0 \\M\"\"!\"\"\"", "'12.3 M!'"},
        {"98765432, \"000-00-0000\"", "'098-76-5432'"},
        {"123456, \"0.00E+00\"", "'1.23E+05'"},
        {"0.00000099996, \"0.00e-0\"", "'1.00e-6'"},
        {"1.50, \"General Number\"", "'1.5'"},
        {"-1, \"Yes/No\"", "'Yes'"},
        {"1 / 0, \"0\"", "'Infinity'"},
        {"\"text\", \"0\"", "'text'"},
        {"45352.75, \"yyyy-mm-dd hh:nn:ss\"", "'2024-03-01 18:00:00'"},
        {"45352.75, \"d mmm yy, dddd h:mm AM/PM\"", "'1 Mar 24, Friday 6:00 PM'"},
        {"45352, \"ww\"", "a format has no part ww of a date"},
        {"1, \"Short Date\"",
         "the format Short Date depends on a machine's settings; write a picture such as yyyy-mm-dd"},
        {"1, \"@\"", "the sign @ of a format is for texts; write it in quotes to show it"},
    };
    for (const Expected& c : cases) {
        const std::string formula = "Format(" + std::string(c.formula) + ")";
        ExpectValues(std::array{Expected{formula.c_str(), c.answer}});
    }
}

TEST(Function, ConditionsAndCases) {
    const Expected cases[] = {
        {"1 < 2", "true"},
        {"CASE WHEN 1 > 2 THEN \"a\" WHEN [Measures].[Lines] > 4 THEN \"b\" ELSE \"c\" END", "'b'"},
        {"CASE [OBS].CurrentMember.Name WHEN \"x\" THEN 1 WHEN \"All\" THEN 2 END", "2"},
        {"CASE 5 WHEN 6 THEN 1 END", "-"},
        {"CASE 5 WHEN \"5\" THEN 1 END",
         "values of different kinds cannot be compared: a number, a text or a condition with another"},
        {"Count(CASE WHEN 1 = 1 THEN Firms ELSE {[Firma]} END)", "2"},
        {"IIf(1 = 2, NULL, NULL)", "-"},
        {"IIf(\"a\", 1, 2)", "expected a condition, found a text"},
        {"CoalesceEmpty(([Measures].[Word], [OBS].[South]), \"few\")", "'few'"},
        {"IIf(IsLeaf([OBS].[South]) OR NOT IsLeaf([Firma].[1]), 1, 2)", "2"},
        {"IIf(IsAncestor([OBS], [OBS].[South].[Other]) AND NOT IsAncestor([OBS], [OBS]) AND "
         "IsAncestor([OBS], [OBS], INCLUDEMEMBER), 1, 2)",
         "1"},
        {"IIf(IsSibling([OBS].[South], [OBS].[North]) AND NOT IsSibling([OBS], [OBS].[North]), 1, 2)", "1"},
        {"IIf([OBS].CurrentMember.Level IS [OBS].[(All)] AND NOT [OBS].[North].Level IS [OBS].[Level2], 1, "
         "2)",
         "1"},
        {"[OBS].[Level2].Ordinal + [OBS].[North].Level.Ordinal", "3"},
        {"Count([OBS].[North].Level.Members)", "2"},
    };
    ExpectValues(cases);
}

TEST(Function, RanksAndDistributions) {
    const Expected cases[] = {
        {"Rank([OBS].[South], [OBS].Children)", "2"},
        {"Rank([OBS], [OBS].Children)", "0"},
        {"Rank([OBS].[All].Parent, [OBS].Children)", "-"},
        {"Rank([OBS].[South].[Other], [OBS].[Level2].Members, [Measures].[Lines])", "2"},
        {"Rank(([OBS].[South], [Firma].[2]), [OBS].Children * Firms)", "4"},
        {"Median([OBS].[Level2].Members, [Measures].[Amount])", "~35.245"},
        {"Median({[OBS].[North], [OBS].[South], [OBS]}, [Measures].[Lines])", "6"},
        {"Var([OBS].Children, [Measures].[Lines]) + VarP([OBS].Children, [Measures].[Lines])", "~3"},
        {"StdDev([OBS].Children, [Measures].[Lines]) / StdevP([OBS].Children, [Measures].[Lines])",
         "~1.4142135623730951"},
        {"Stdev({[OBS]}, [Measures].[Lines])", "-"},
    };
    ExpectValues(cases);
    const Expected sets[] = {
        {"TopPercent([OBS].[Level2].Members, 60, [Measures].[Lines])",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[South].[Other]"},
        {"TopPercent([OBS].[Level2].Members, 61, [Measures].[Lines])",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[South].[Other] | [OBS].[All].[North].[O'Neil]"},
        {"BottomPercent([OBS].[Level2].Members, 10, [Measures].[Lines])", "[OBS].[All].[North].[O'Neil]"},
        {"TopSum([OBS].[Level2].Members, 3000.5, [Measures].[Amount])", "[OBS].[All].[North].[Haifa]"},
        {"BottomSum([Firma].Children, 2, [Measures].[Lines])", "[Firma].[All].[2]"},
        {"Order([OBS].[Level2].Members, [OBS].CurrentMember.Name, BDESC, [Measures].[Amount], BASC)",
         "[OBS].[All].[South].[Other] | [OBS].[All].[North].[Other] | [OBS].[All].[North].[O'Neil] | "
         "[OBS].[All].[South].[O'Neil] | [OBS].[All].[North].[Haifa] | [OBS].[All].[South].[Eilat]"},
        {"Order([OBS].Children, 1, ASC, 2, BDESC)",
         "keys within families (ASC, DESC) and across them (BASC, BDESC) do not mix"},
    };
    ExpectSets(sets);
}

TEST(Function, Sets) {
    const Expected cases[] = {
        {"Exists([OBS].[Level2].Members, {[OBS].[South], [OBS].[North].[Haifa]})",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[South].[Eilat] | [OBS].[All].[South].[O'Neil] | "
         "[OBS].[All].[South].[Other]"},
        {"Exists([Accounts].[AccountCodes].Children, {[Accounts].[AccountNames].[Sales]})",
         "[Accounts].[AccountCodes].[All].[4000]"},
        {"Exists(Firms, {[OBS].[South]})", "[Firma].[All].[1] | [Firma].[All].[2]"},
        {"Exists(Firms, {})", ""},
        {"NonEmpty([OBS].[Level2].Members, {[Firma].[2]})",
         "[OBS].[All].[South].[Eilat] | [OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other]"},
        {"NonEmpty(Firms, [Firma])", "the hierarchy [Firma] stands in both sets of NonEmpty"},
        {"NonEmptyCrossJoin([OBS].Children, Firms)",
         "[OBS].[All].[North]+[Firma].[All].[1] | [OBS].[All].[South]+[Firma].[All].[1] | "
         "[OBS].[All].[South]+[Firma].[All].[2]"},
        {"NonEmptyCrossJoin([OBS].Children, Firms, 1)", "[OBS].[All].[North] | [OBS].[All].[South]"},
        {"Generate([OBS].Children, {[OBS].CurrentMember.FirstChild, [OBS]})",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[North] | [OBS].[All].[South].[Eilat] | "
         "[OBS].[All].[South]"},
        {"Generate(Firms, {[OBS]}, ALL)", "[OBS].[All] | [OBS].[All]"},
        {"Filter([OBS].[Level2].Members AS s, s.CurrentOrdinal < 1 OR s.Current.Name = \"Eilat\")",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[South].[Eilat]"},
        {"Generate(Firms, Head(Firms, Firms.CurrentOrdinal), ALL)", "[Firma].[All].[1]"},
        {"Filter(Firms, Count([OBS].Children AS t) = t.CurrentOrdinal)",
         "no function goes through the set here"},
        {"{AddCalculatedMembers([OBS].[North].Children), StripCalculatedMembers({[OBS].[Top], [OBS]})}",
         "[OBS].[All].[North].[Haifa] | [OBS].[All].[North].[O'Neil] | [OBS].[All].[North].[Other] | "
         "[OBS].[All].[North].[New] | [OBS].[All]"},
        {"Extract([OBS].Children * Firms, [Firma])", "[Firma].[All].[1] | [Firma].[All].[2]"},
        {"DrilldownLevel({[OBS], [OBS].[North], [OBS].[South], [OBS].[South].[Other]}, [OBS].[Level1])",
         "[OBS].[All] | [OBS].[All].[North] | [OBS].[All].[North].[Haifa] | [OBS].[All].[North].[O'Neil] | "
         "[OBS].[All].[North].[Other] | [OBS].[All].[South] | [OBS].[All].[South].[Other]"},
        {"DrilldownLevel(Firms * {[OBS].[South]}, , 1)",
         "[Firma].[All].[1]+[OBS].[All].[South] | [Firma].[All].[1]+[OBS].[All].[South].[Eilat] | "
         "[Firma].[All].[1]+[OBS].[All].[South].[O'Neil] | [Firma].[All].[1]+[OBS].[All].[South].[Other] | "
         "[Firma].[All].[2]+[OBS].[All].[South] | [Firma].[All].[2]+[OBS].[All].[South].[Eilat] | "
         "[Firma].[All].[2]+[OBS].[All].[South].[O'Neil] | [Firma].[All].[2]+[OBS].[All].[South].[Other]"},
        {"DrilldownMember({[OBS]}, {[OBS], [OBS].[South]}, RECURSIVE)",
         "[OBS].[All] | [OBS].[All].[North] | [OBS].[All].[South] | [OBS].[All].[South].[Eilat] | "
         "[OBS].[All].[South].[O'Neil] | [OBS].[All].[South].[Other]"},
        {"ToggleDrillState({[Firma], [Firma].[1], [Firma].[2]}, {[Firma]})", "[Firma].[All]"},
        {"DrillupMember({[Firma], [Firma].[1]}, {[Firma]})", "[Firma].[All]"},
        {"DrillupLevel({[OBS], [OBS].[North], [OBS].[North].[Haifa]})", "[OBS].[All] | [OBS].[All].[North]"},
        {"{ParallelPeriod([Date].[Year], 1, [Date].[2024].[Q2]), OpeningPeriod([Date].[Month], "
         "[Date].[2024]), "
         "ClosingPeriod([Date].[Month], [Date].[2023]), Cousin([Date].[2024].[Q1].[2], [Date].[2023])}",
         "[Date].[All].[2023].[Q2] | [Date].[All].[2024].[Q1].[1] | [Date].[All].[2023].[Q4].[12] | "
         "[Date].[All].[2023].[Q1].[2]"},
        {"{QTD([Date].[2024].[Q2].[5]), Ancestors([Date].[2024].[Q2].[5], 2)}",
         "[Date].[All].[2024].[Q2].[4] | [Date].[All].[2024].[Q2].[5] | [Date].[All].[2024]"},
        {"WTD([Date].[2024])", "[Date] has no level [Week]; PeriodsToDate takes any level"},
        {"NonEmpty([Date].Members * [OBS].Members * [SuperSumery].Members * [Accounts].Members, "
         "[ActX].Members * "
         "[Cost_Centers].Members * [Activities].Members * [AccX].Members * [Firma].Members)",
         "the cells that NonEmpty reads are more than 10000000"},
        {"VisualTotals({[OBS]})",
         "the function VisualTotals is not supported; write a calculated member with "
         "Aggregate over the members that are shown"},
        {"{[2024].[Q1], [North].[Haifa].Parent, [AccountNames].[Sales]}",
         "a set of [Date] takes no element of [OBS]"},
        {"{[2024].[Q1], [Year].[2023]}", "[Date].[All].[2024].[Q1] | [Date].[All].[2023]"},
    };
    ExpectSets(cases);
    EXPECT_EQ(Answer("WITH MEMBER [Measures].[x] AS Sum(PeriodsToDate(), [Measures].[Lines]) MEMBER "
                     "[Measures].[y] AS (ParallelPeriod(), [Measures].[Lines]) MEMBER [Measures].[z] AS "
                     "(ClosingPeriod(), [Measures].[Lines]) SELECT {[Measures].[x], [Measures].[y], "
                     "[Measures].[z]} ON 0, {[Date].[2024].[Q2], [Date].[2024].[Q1].[3]} ON 1 FROM Finance"),
              "[Measures].[x] | [Measures].[y] | [Measures].[z]\n[Date].[All].[2024].[Q2]: 9 | - | -\n"
              "[Date].[All].[2024].[Q1].[3]: 6 | 1 | -");
}

} // namespace
} // namespace qel::engine
