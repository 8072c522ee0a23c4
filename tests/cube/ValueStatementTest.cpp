#include "cube/ValueStatement.h"

#include "cube/NameQuery.h"

#include <gtest/gtest.h>

#include <functional>

namespace qel::ModSetCube {
namespace {

const PeriodSpan march{3, "[Date].[2020].[3]"};

/// OBS name 1, number 12, and no other restriction.
struct Arguments : ValueCall {
    Arguments() : ValueCall{.CubeName = "Finance", .Measure = "Amount"} {
        Summary_Group = Seif_level = Accounts = MoneySet = Plbs = RH = Firma = Opening_Balance = "All";
    }

    ValueQuery Query() const {
        ValueQuery query = QueryOf(*this, keys, Locale());
        query.span = march;
        return query;
    }

    ValueKeys keys{1.0, "12", "All", "", "All"};
};

TEST(ValueStatement, IsExactToTheBlank) {
    Arguments arguments;
    arguments.keys.ObsLevel = "Cost_Centers";
    arguments.keys.ObsMember = "100";
    arguments.Accounts = "4000";
    EXPECT_EQ(
        ComposeValueStatement(arguments.Query()),
        "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(3,[Date].[2020].[3]),[Measures].[Amount])    ' "
        "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Finance where "
        "(  [ActX].[OBSx].[All].[1].[12],[Cost_Centers].[All].[100],[Accounts].[AccountCodes].[All].[4000])");
}

TEST(ValueStatement, PutsTheObsMembersAfterTheDateMember) {
    const struct {
        const char* what;
        ObsMembers members;
        const char* text;
    } cases[] = {
        {"one name under two parents",
         {"[OBS].[All].[North].[10]", "[OBS].[All].[South].[10]"},
         "\r\n Member [Obs].Sel as ' SUM ({  , [OBS].[All].[North].[10] , [OBS].[All].[South].[10] }) ' "},
        {"an apostrophe is doubled",
         {"[OBS].[All].[North].[Dan's]"},
         "\r\n Member [Obs].Sel as ' SUM ({  , [OBS].[All].[North].[Dan''s] }) ' "},
        {"no member leaves the closing alone", {}, " }) ' "},
    };
    for (const auto& c : cases) {
        Arguments arguments;
        arguments.keys.ObsLevel = "Level2";
        arguments.Measure = " Net [local]  ";
        arguments.CubeName = " Two Words ";
        ValueQuery query = arguments.Query();
        query.span = {12, "[Date].[D]"};
        query.obsMembers = std::make_shared<const ObsMembers>(c.members);
        EXPECT_EQ(ComposeValueStatement(query),
                  std::string("WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(12,[Date].[D]),"
                              "[Measures].[Net [local]])    '") +
                      c.text +
                      " SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From "
                      "Two Words where (  [ActX].[OBSx].[All].[1].[12],[Obs].Sel)")
            << c.what;
    }
}

/// What stands between "where (  " and ")".
std::string SlicersOf(const Arguments& arguments) {
    const std::string text = ComposeValueStatement(arguments.Query());
    const std::string opening = " where (  ";
    const std::size_t start = text.find(opening) + opening.size();
    return text.substr(start, text.size() - 1 - start);
}

TEST(ValueStatement, MakesASlicerOfEverySelection) {
    const std::string obs = "[ActX].[OBSx].[All].[1].[12]";
    const struct {
        const char* what;
        std::function<void(Arguments&)> set;
        std::string slicers;
    } cases[] = {
        {"All everywhere keeps the OBS piece", [](auto&) {}, obs},
        {"All in any letter case, blanks around it", [](auto& a) { a.Firma = a.Accounts = " aLL "; }, obs},
        {"nothing restricts nothing",
         [](auto& a) {
             a.Plbs = a.RH = a.Firma = a.Opening_Balance = a.MoneySet = "";
             a.Accounts = "  ";
             a.keys.ActivityList = Variant();
         },
         obs},
        {"every piece, trimmed, in its fixed order",
         [](auto& a) {
             a.Accounts = " 9 ";
             a.keys.ObsLevel = " Cost_Centers ";
             a.keys.ObsMember = " 8 ";
             a.keys.ActivityList = " 6 ";
             a.MoneySet = " 5 ";
             a.Opening_Balance = " 4 ";
             a.Firma = " 3 ";
             a.RH = " 2 ";
             a.Plbs = " 1 ";
         },
         "[Plbs].[1],[RH].[2],[Firma].[3],[Opening_Balance].[4],[MoneySet].[5],"
         "[Activities].[ActivityCodes].[ActivityCode].[6]," +
             obs + ",[Cost_Centers].[All].[8],[Accounts].[AccountCodes].[All].[9]"},
        {"OBS name is trimmed, OBS number is not",
         [](auto& a) {
             a.keys.ObsName = " 1 ";
             a.keys.ObsNum = " 12 ";
         },
         "[ActX].[OBSx].[All].[1].[ 12 ]"},
        {"an empty OBS name or number keeps its brackets",
         [](auto& a) { a.keys.ObsName = a.keys.ObsNum = Variant(); }, "[ActX].[OBSx].[All].[].[]"},
        {"a zero character alone is no OBS number", [](auto& a) { a.keys.ObsNum = std::string(1, '\0'); },
         "[ActX].[OBSx].[All].[1]"},
        {"two zero characters are one", [](auto& a) { a.keys.ObsNum = std::string(2, '\0'); },
         "[ActX].[OBSx].[All].[1].[" + std::string(2, '\0') + "]"},
        {"All as OBS name and number are keys", [](auto& a) { a.keys.ObsName = a.keys.ObsNum = "All"; },
         "[ActX].[OBSx].[All].[All].[All]"},
        {"the OBS level's letter case counts", [](auto& a) { a.keys.ObsLevel = "ALL"; }, obs + ",[Obs].Sel"},
        {"so does the cost centres'", [](auto& a) { a.keys.ObsLevel = "cost_centers"; }, obs + ",[Obs].Sel"},
        {"an empty OBS level is a level", [](auto& a) { a.keys.ObsLevel = ""; }, obs + ",[Obs].Sel"},
        {"a cost centre named All",
         [](auto& a) {
             a.keys.ObsLevel = "Cost_Centers";
             a.keys.ObsMember = "All";
         },
         obs + ",[Cost_Centers].[All].[All]"},
        {"nothing in a key is escaped", [](auto& a) { a.Accounts = "ע\"מ ] ' & , )"; },
         obs + ",[Accounts].[AccountCodes].[All].[ע\"מ ] ' & , )]"},
        {"a no-break space is no blank", [](auto& a) { a.RH = "\u00A0"; }, "[RH].[\u00A0]," + obs},
    };
    for (const auto& c : cases) {
        Arguments arguments;
        c.set(arguments);
        EXPECT_EQ(SlicersOf(arguments), c.slicers) << c.what;
    }
}

TEST(ValueStatement, PutsTheSummaryGroupOnRows) {
    const struct {
        const char *level, *member, *rows;
    } cases[] = {
        {"SuperSum2", " 41 ", "[SuperSumery].[SumeryCode].[SuperSum2].[41] }"},
        {"SuperSum2", "", "[SuperSumery].[SumeryCode].[SuperSum2].[] }"},
        {"aLL", "41", "[SuperSumery].[SumeryCode] }"},
        {"", "41", "[SuperSumery].[SumeryCode] }"},
        {" All ", "41", "[SuperSumery].[SumeryCode].[ All ].[41] }"},
    };
    for (const auto& c : cases) {
        Arguments arguments;
        arguments.Summary_Group = c.level;
        arguments.Seif_level = c.member;
        const std::string text = ComposeValueStatement(arguments.Query());
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
