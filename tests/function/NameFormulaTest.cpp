#include "cube/NameQuery.h"
#include "function/OrmQelFunction.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

using test::LedgerProvider;
using test::RecordingProvider;
using Log = std::vector<std::string>;

class NameFormulaTest : public ::testing::Test {
protected:
    NameFormulaTest() {
        provider_.rowMembers = {{"41", "[x]", "SuperSum1Name", "הכנסות \"ממכירות\"", 1}};
        provider_.TakeLog();
    }

    std::string Name(const std::string& dimType, const std::string& key,
                     const std::string& cubeFile = "a.cub") {
        return object_.QelName({cubeFile, "Finance", dimType, key}).value.As<std::string>();
    }

    RecordingProvider provider_ = LedgerProvider();
    Locale locale_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_{{thread_, provider_, locale_}};
};

TEST_F(NameFormulaTest, AsksTheCubeForTheName) {
    const NameCall call{" a.cub ", " Finance ", "SuperSum1", "41"};
    EXPECT_EQ(object_.RetQelName(call).value.As<std::string>(), "הכנסות \"ממכירות\"");
    const Log log = {"new connection", "open " + test::ConnectionTextFor("a.cub"),
                     "statement " + ModSetCube::ComposeMemberNameStatement("Finance", "SuperSum1", "41"),
                     "close cellset"};
    EXPECT_EQ(provider_.TakeLog(), log) << "no layout check, no Date table";
    EXPECT_EQ(object_.get_g_cubeFile(), "");
    object_.RetQelName({"a.cub", "Finance", "SuperSum1 ", " 4 "});
    EXPECT_NE(provider_.Statements().at(0).find("[SuperSum1 Name]"), std::string::npos);
    EXPECT_NE(provider_.Statements().at(0).find("[ 4 ]"), std::string::npos) << "the key is not trimmed";
    const NameCall after = TextsAfter({" a.cub ", " Finance ", " SuperSum1 ", " 4 "});
    EXPECT_EQ(after.cubeFile + "|" + after.CubeName + "|" + after.DimType + "|" + after.DimMember,
              "a.cub|Finance| SuperSum1 | 4 ");
}

TEST_F(NameFormulaTest, OpensTheCubeEvenWhereNoNameIsAsked) {
    EXPECT_EQ(Name("SuperSum1", "Sales"), "Sales");
    EXPECT_EQ(Name("Accounts", "41"), "");
    EXPECT_EQ(provider_.TakeLog(), (Log{"new connection", "open " + test::ConnectionTextFor("a.cub"), "close",
                                        "open " + test::ConnectionTextFor("a.cub")}));
    EXPECT_EQ(object_.get_g_cubeFile(), "a.cub") << "only a reopening names the cube";
    EXPECT_EQ(Name("Accounts", "41"), "");
    EXPECT_EQ(provider_.TakeLog(), Log{});
}

TEST_F(NameFormulaTest, EveryFailureIsADash) {
    provider_.failingOpen = -2147467259;
    EXPECT_EQ(Name("SuperSum1", "Sales"), "-") << "even for a key that is a name already";
    provider_.failingOpen = 0;
    Name("SuperSum1", "Sales", "a.cub");
    Name("SuperSum1", "Sales", "b.cub");
    provider_.failingStatement = -2147217904;
    EXPECT_EQ(Name("SuperSum1", "41", "b.cub"), "-");
    EXPECT_EQ(thread_.CubeConnection->State(), stateOpen) << "a name that fails leaves the connection";
    EXPECT_EQ(object_.get_g_cubeFile() + "|" + object_.get_g_CubeName(), "b.cub|Finance")
        << "and the names of the cube";
    EXPECT_EQ(object_.RetQelName({"b.cub", "Finance", "SuperSum1", "41"}).failure.value().Number(),
              -2147217904);
    provider_.failingStatement = 0;
    provider_.rowMembers.clear();
    EXPECT_EQ(Name("SuperSum1", "41"), "-") << "no member has that key";
}

TEST_F(NameFormulaTest, SharesTheConnectionOfValueFormulas) {
    object_.QeLF1({.cubeFile = "a.cub", .CubeName = "Finance", .To_Date = DateFromDay({2020, 1, 1})});
    provider_.TakeLog();
    EXPECT_EQ(Name("Accounts", "41"), "");
    EXPECT_EQ(provider_.TakeLog(), Log{});
    EXPECT_EQ(Name("Accounts", "41", "b.cub"), "");
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "open " + test::ConnectionTextFor("b.cub")}));
    EXPECT_EQ(object_.get_g_cubeFile() + "|" + object_.get_g_CubeName(), "b.cub|Finance");
}

} // namespace
} // namespace qel
