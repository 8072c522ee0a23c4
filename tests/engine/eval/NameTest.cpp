#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace qel::engine {
namespace {

const Cube& Finance() {
    static const std::shared_ptr<const Cube> cube =
        BuildLedgerCube({{"2024-01", "4000", "n1", "A", "100", "7", "1", 100}});
    return *cube;
}

std::string FirstMember(const std::string& set) {
    try {
        return RunStatement(Finance(), "SELECT {" + set + "} ON 0 FROM Finance").MemberAt(0, 0, 0).uniqueName;
    } catch (const EngineError& error) {
        return std::string(error.what()).substr(0, std::string(error.what()).find(", near"));
    }
}

TEST(Name, IsResolvedInTheFirstReadingThatFits) {
    const struct {
        const char *what, *path, *member;
    } cases[] = {
        {"a dimension is the default member of its first hierarchy", "[Accounts]",
         "[Accounts].[AccountCodes].[All]"},
        {"a hierarchy is its default member", "[Accounts].[AccountNames]", "[Accounts].[AccountNames].[All]"},
        {"a hierarchy named as its dimension, a level named as both", "[AccX].[AccX].[AccX].[2]",
         "[AccX].[All].[2]"},
        {"the same with the path through All", "[AccX].[AccX].[All].[2]", "[AccX].[All].[2]"},
        {"the same without", "[AccX].[2]", "[AccX].[All].[2]"},
        {"any letter case, without brackets", "accx.ALL.[2]", "[AccX].[All].[2]"},
        {"a member at any level when none is named", "[SuperSumery].[SumeryCode].[21]",
         "[SuperSumery].[SumeryCode].[All].[2].[21]"},
        {"below the level that is named", "[SuperSumery].[SumeryCode].[SuperSum2].[21]",
         "[SuperSumery].[SumeryCode].[All].[2].[21]"},
        {"a level and a path from it", "[SuperSumery].[SumeryCode].[SuperSum1].[2].[21]",
         "[SuperSumery].[SumeryCode].[All].[2].[21]"},
        {"of one name under two parents the first", "[SuperSumery].[SumeryName].[Other]",
         "[SuperSumery].[SumeryName].[All].[Income].[Other]"},
        {"or the one under the parent that is named", "[SuperSumery].[SumeryName].[Costs].[Other]",
         "[SuperSumery].[SumeryName].[All].[Costs].[Other]"},
        {"a member of a hierarchy that is not the first", "[Accounts].[Sales, export]",
         "[Accounts].[AccountNames].[All].[Sales, export]"},
        {"a level of a hierarchy that is not the first", "[Accounts].[AccountName].Members.Item(1)",
         "[Accounts].[AccountNames].[All].[Sales, export]"},
        {"by key", "[Accounts].[AccountNames].&[5100]", "[Accounts].[AccountNames].[All].[O'Neil's rent]"},
        {"by key below a level", "[Accounts].[AccountNames].[AccountName].&[5100]",
         "[Accounts].[AccountNames].[All].[O'Neil's rent]"},
        {"brackets inside a name are doubled", "[Accounts].[AccountNames].[Interest [net]]]",
         "[Accounts].[AccountNames].[All].[Interest [net]]]"},
        {"quotes inside a name", "[Accounts].[AccountNames].[Wages & \"13th\"]",
         "[Accounts].[AccountNames].[All].[Wages & \"13th\"]"},
        {"Hebrew", "[Accounts].[AccountNames].[שכירות]", "[Accounts].[AccountNames].[All].[שכירות]"},
        {"measures, through their level, in any case", "[measures].[MeasuresLevel].[LINES]",
         "[Measures].[Lines]"},
        {"the default measure", "[Measures]", "[Measures].[Amount]"},
        {"the level that all members stand on", "[OBS].Levels(2).Members", "[OBS].[All].[North].[Haifa]"},
        {"a name that is no member", "[Accounts].[AccountCodes].[All].[9999]",
         "line 1, column 41: [Accounts].[AccountCodes].[All] has no member [9999]"},
        {"an empty name is no member", "[ActX].[OBSx].[All].[1].[]",
         "line 1, column 33: [ActX].[OBSx].[All].[1] has no member []"},
        {"a member is not sought below its grandparent", "[OBS].[All].[Haifa]",
         "line 1, column 21: [OBS].[All] has no member [Haifa]"},
        {"nor below another parent", "[ActX].[OBSx].[All].[2].[11]",
         "line 1, column 33: [ActX].[OBSx].[All].[2] has no member [11]"},
        {"an unknown key", "[Accounts].&[x]", "line 1, column 20: [Accounts] has no member &[x]"},
        {"an unknown dimension", "[Acounts].[AccountCodes]",
         "line 1, column 9: the cube [Finance] has no dimension [Acounts]"},
        {"an unknown level", "[OBS].[Level9].Members",
         "line 1, column 15: [OBS] has no hierarchy or level [Level9]"},
        {"an unknown measure", "[Measures].[Amont]", "line 1, column 20: [Measures] has no member [Amont]"},
        {"a name without brackets with a blank", "[Accounts].Sales export",
         "line 1, column 26: expected ',' or '}', found 'export'"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FirstMember(c.path), c.member) << c.what;
    }
}

TEST(Name, OfEveryMemberLeadsBackToIt) {
    for (const Hierarchy& hierarchy : Finance().Hierarchies()) {
        for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
            const std::string name = hierarchy.MemberUniqueName(member);
            EXPECT_EQ(FirstMember(name), name);
        }
    }
}

TEST(Name, PrefersTheSpellingOfThePathOnOneLevel) {
    const test::TemporaryFolder folder;
    folder.Write("lines.csv", "day,dept,amount\n2024-01-01,a,1\n2024-01-01,A,2\n");
    BuildOptions options;
    options.output = folder.Path("cube.cub");
    options.definition = folder.Write("cube.json", R"({"tables": {"lines": {"file": "lines.csv"}}, "cubes": [{
        "name": "Finance", "facts": "lines", "dimensions": [{"name": "Dept", "column": "dept"},
            {"name": "Date", "column": "day", "calendar": {"periods": "months", "quarters": true}}],
        "measures": [{"name": "Amount", "column": "amount"}]}]})");
    BuildCube(options);
    const auto cube = CubeFile::Open(options.output)->FindCube("Finance");
    const Cellset cells =
        RunStatement(*cube, "SELECT {[Dept].[a], [Dept].[A], [Dept].&[a], [Dept].&[A]} ON 0 FROM Finance");
    EXPECT_EQ(cells.Cell({0}).number, 1);
    EXPECT_EQ(cells.Cell({1}).number, 2);
    EXPECT_EQ(cells.Cell({2}).number, 1);
    EXPECT_EQ(cells.Cell({3}).number, 2);
}

} // namespace
} // namespace qel::engine
