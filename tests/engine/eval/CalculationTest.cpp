#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"
#include "tests/helpers/SmallStack.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

// What a cube defines, in the statements that use it.

namespace qel::engine {
namespace {

std::string Answer(const Cube& cube, const std::string& statement) {
    try {
        return Show(RunStatement(cube, statement));
    } catch (const EngineError& error) {
        return error.what();
    }
}

const Cube& Calculated() {
    static const std::shared_ptr<const Cube> cube = BuildCommonLedger(R"~(,
      "calculatedMembers": [
        {"name": "[Measures].[Average]", "formula": "[Measures].[Amount] / [Measures].[Lines]", "solveOrder": 5},
        {"name": "Double", "formula": "2 * [Measures].[Half]"},
        {"name": "[Measures].[Half]", "formula": "[Measures].[Amount] / 2"},
        {"name": "[OBS].[North].[Both]", "formula": "[OBS].[North].[Haifa] + [OBS].[North].[Other]"},
        {"name": "[Measures].[Best]", "formula": "Sum(Large, [Measures].[Double])"},
        {"name": "[Measures].[Endless]", "formula": "Sum([Measures].AllMembers, [Measures].CurrentMember)"},
        {"name": "[Measures].[Firms]", "formula": "Count(Traded)"},
        {"name": "[Accounts used]",
         "formula": "Count(NonEmpty([Accounts].[AccountCodes].[AccountCode].Members, [Measures].[Lines]))"},
        {"name": "[Measures].[Label]", "formula": "\"a\""},
        {"name": "[Measures].[Wrong]", "formula": "\n1 + [Measures].[Label]"}],
      "namedSets": [
        {"name": "Sold", "formula": "Filter([OBS].[Level2].Members, [Measures].[Amount] > 0)"},
        {"name": "Busy", "formula": "Filter([OBS].[Level1].Members, [Measures].[Firms] < 3)"},
        {"name": "Traded", "formula": "Filter([Firma].Children, [Measures].[Lines] > 0)"},
        {"name": "[Large]", "formula": "Filter(Sold, [Measures].[Amount] > 1)"}])~");
    return *cube;
}

TEST(Calculation, OfTheCubeIsKnownToEveryStatement) {
    const struct {
        const char *what, *statement, *grid;
    } cases[] = {
        {"a formula that needs a later one",
         "SELECT {[Measures].[double]} ON 0 FROM Finance WHERE [OBS].[North]",
         "[Measures].[Double]\n~5600.5"},
        {"as the measure of a formula",
         "WITH MEMBER [Date].DateSel AS 'SUM(LastPeriods(2, [Date].[2024].[Q1].[3]), [Measures].[Average])' "
         "SELECT {[Date].DateSel} ON 0 FROM Finance WHERE [Accounts].[4000]",
         "[Date].[DateSel]\n~3500.75"},
        {"members below stored ones", "SELECT {[OBS].[North].[Both]} ON 0 FROM Finance",
         "[OBS].[All].[North].[Both]\n6000.5"},
        {"not in Members, Children",
         "SELECT [Measures].Members ON 0, [OBS].[North].Children ON 1 FROM Finance",
         "[Measures].[Amount] | [Measures].[Lines]\n[OBS].[All].[North].[Haifa]: 3000.5 | 4\n"
         "[OBS].[All].[North].[O'Neil]: -400 | 1\n[OBS].[All].[North].[Other]: 3000 | 1"},
        {"with the calculated ones",
         "SELECT AddCalculatedMembers([OBS].[North].Children) - [OBS].[North].Children ON 0, "
         "Head([Measures].AllMembers, 4) ON 1 FROM Finance",
         "[OBS].[All].[North].[Both]\n[Measures].[Amount]: 6000.5\n[Measures].[Lines]: 5\n"
         "[Measures].[Average]: ~1200.1\n[Measures].[Double]: ~6000.5"},
        {"sets, and where a function is in them",
         "WITH MEMBER [Measures].[n] AS Sum(Large, Large.CurrentOrdinal) SELECT {[Measures].[n], "
         "[Measures].[Best]} ON 0, sold ON 1 FROM Finance",
         "[Measures].[n] | [Measures].[Best]\n[OBS].[All].[North].[Haifa]: 3 | ~6070.5\n"
         "[OBS].[All].[North].[Other]: 3 | ~6070.5\n[OBS].[All].[South].[Eilat]: 3 | ~6070.5\n"
         "[OBS].[All].[South].[Other]: 3 | ~6070.5"},
        {"the statement's own go first, but not in formulas of the cube",
         "WITH MEMBER [Measures].[Half] AS 7 SET Sold AS {[OBS].[South]} SELECT {[Measures].[Half], "
         "[Measures].[Double], [Measures].[Best]} ON 0, Sold ON 1 FROM Finance",
         "[Measures].[Half] | [Measures].[Double] | [Measures].[Best]\n[OBS].[All].[South]: 7 | ~-229.51 | "
         "~6070.5"},
        {"and are listed once",
         "WITH MEMBER [Measures].[Half] AS 7 SELECT {} ON 0, Filter([Measures].AllMembers, "
         "[Measures].CurrentMember.Name = \"Half\") ON 1 FROM Finance",
         "\n[Measures].[Half]: "},
        {"distinct members with facts",
         "SELECT {[Measures].[Accounts used]} ON 0, [Firma].Members ON 1 FROM Finance WHERE [Date].[2024]",
         "[Measures].[Accounts used]\n[Firma].[All]: 4\n[Firma].[All].[1]: 4\n[Firma].[All].[2]: 2"},
        {"a set that needs a later one through a member",
         "SELECT {[Measures].[Firms]} ON 0, Busy ON 1 FROM Finance",
         "[Measures].[Firms]\n[OBS].[All].[North]: 2\n[OBS].[All].[South]: 2"},
        {"a fault in a formula names the formula and the place in it",
         "SELECT {[Measures].[Wrong]} ON 0 FROM Finance",
         "the cube's definition of [Measures].[Wrong], line 2, column 5: expected a number, found the text "
         "\"a\", "
         "near \" 1 + [Measures].[Label]\""},
        {"a member that needs itself in a way that the build does not see",
         "SELECT {[Measures].[Endless]} ON 0 FROM Finance",
         "the cube's definition of [Measures].[Endless], line 1, column 1: the calculated member needs "
         "itself, "
         "or more than 400 expressions inside one another, to be evaluated, near "
         "\"Sum([Measures].AllMembers, "
         "[Measures…\""},
        {"a later fault is one of the statement again",
         "WITH MEMBER [Measures].[t] AS [Measures].[Half] + [Measures].[u] MEMBER [Measures].[u] AS "
         "IIf([Measures].[Lines] > 0, \"a\", 1) SELECT {[Measures].[t]} ON 0 FROM Finance",
         "line 1, column 51: expected a number, found the text \"a\", near \"…s].[Half] + [Measures].[u] "
         "MEMBER "
         "[Measures].[u]…\""},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Answer(Calculated(), test.statement), test.grid) << test.what;
    }
}

TEST(Calculation, ChainsTakeNoMoreStackThanThoseOfAStatement) {
    std::string members = R"({"name": "m0", "formula": "5"})",
                sets = R"({"name": "s0", "formula": "{[Firma].[1]}"})";
    for (int i = 1; i < 1000; ++i) {
        members += fmt::format(R"(, {{"name": "m{}", "formula": "[Measures].[m{}]"}})", i, i - 1);
        sets += fmt::format(R"~(, {{"name": "s{}", "formula": "Union(s{}, s0)"}})~", i, i - 1);
    }
    const auto cube =
        BuildCommonLedger(fmt::format(R"(, "calculatedMembers": [{}], "namedSets": [{}])", members, sets));
    std::string few, many, set;
    test::RunOnSmallStack([&] {
        few = Answer(*cube, "SELECT FROM Finance WHERE [Measures].[m100]");
        many = Answer(*cube, "SELECT FROM Finance WHERE [Measures].[m999]");
        set = Answer(*cube, "SELECT s999 ON 0 FROM Finance");
    });
    EXPECT_EQ(few, "5");
    EXPECT_NE(many.find("or more than 400 expressions inside one another"), std::string::npos) << many;
    EXPECT_EQ(set, "[Firma].[All].[1]\n5600.49");
}

} // namespace
} // namespace qel::engine
