#include "function/OrmQelFunction.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

using test::LedgerProvider;
using test::RecordingProvider;
using Log = std::vector<std::string>;

std::string TextOf(const std::string& cubeFile) {
    return "Provider=MSOLAP;Data Source=" + cubeFile +
           ";Initial Catalog=Finance;Client Cache Size=25;Auto Synch Period=10000";
}

class NameFormulaTest : public ::testing::Test {
protected:
    NameFormulaTest() {
        provider_.rowMembers = {{"41", "[x]", "SuperSum1Name", "הכנסות \"ממכירות\"", 1}};
        provider_.TakeLog();
    }

    std::string Name(std::string dimType, std::string key, std::string cubeFile = "a.cub") {
        std::string cubeName = "Finance";
        return object_.QelName(cubeFile, cubeName, dimType, key).As<std::string>();
    }

    RecordingProvider provider_ = LedgerProvider();
    Locale locale_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_{{thread_, provider_, locale_}};
};

TEST_F(NameFormulaTest, AsksTheCubeForTheName) {
    std::string cubeFile = " a.cub ";
    std::string cubeName = " Finance ";
    std::string dimType = "SuperSum1";
    std::string key = "41";
    EXPECT_EQ(object_.RetQelName(cubeFile, cubeName, dimType, key).As<std::string>(), "הכנסות \"ממכירות\"");
    EXPECT_EQ(cubeFile + "|" + cubeName, "a.cub|Finance");
    const Log log = {
        "open " + TextOf("a.cub"),
        "statement  SELECT NON EMPTY { [Measures] } on columns,  NON EMPTY  "
        "{[SuperSumery].[SumeryName].[SuperSum1Name].Allmembers  } ON ROWS  From [Finance] where (  "
        "[SuperSumery].[SumeryCode].[41] )",
        "close cellset"};
    EXPECT_EQ(provider_.TakeLog(), log) << "no layout check, no Date table";
    EXPECT_EQ(object_.get_g_cubeFile(), "");
}

TEST_F(NameFormulaTest, OpensTheCubeEvenWhereNoNameIsAsked) {
    EXPECT_EQ(Name("SuperSum1", "Sales"), "Sales");
    EXPECT_EQ(Name("Accounts", "41"), "");
    EXPECT_EQ(provider_.TakeLog(), (Log{"open " + TextOf("a.cub"), "close", "open " + TextOf("a.cub")}));
    EXPECT_EQ(object_.get_g_cubeFile(), "a.cub") << "only a reopening names the cube";
    EXPECT_EQ(Name("Accounts", "41"), "");
    EXPECT_EQ(provider_.TakeLog(), Log{});
}

TEST_F(NameFormulaTest, EveryFailureIsADash) {
    provider_.failingOpen = -2147467259;
    EXPECT_EQ(Name("SuperSum1", "Sales"), "-") << "even for a key that is a name already";
    EXPECT_NE(thread_.CubeConnection, nullptr) << "a name that fails leaves the connection";
    provider_.failingOpen = 0;
    provider_.failingStatement = -2147217904;
    EXPECT_EQ(Name("SuperSum1", "41"), "-");
    provider_.failingStatement = 0;
    provider_.rowMembers.clear();
    EXPECT_EQ(Name("SuperSum1", "41"), "-") << "no member has that key";
}

TEST_F(NameFormulaTest, SharesTheConnectionOfValueFormulas) {
    KeyList one = {"1"};
    KeyList all = {"All"};
    std::string cubeFile = "a.cub";
    std::string cubeName = "Finance";
    std::string texts[9] = {"All", "All", "All", "Amount", "All", "All", "All", "All", "All"};
    object_.QelFuncDemo(cubeFile, cubeName, one, one, all, all, all, texts[0], texts[1], texts[2], texts[3],
                        texts[4], texts[5], texts[6], texts[7], texts[8], {}, DateFromDay({2020, 1, 1}));
    provider_.TakeLog();
    EXPECT_EQ(Name("Accounts", "41"), "");
    EXPECT_EQ(provider_.TakeLog(), Log{});
    EXPECT_EQ(Name("Accounts", "41", "b.cub"), "");
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "open " + TextOf("b.cub")}));
    EXPECT_EQ(object_.get_g_cubeFile() + "|" + object_.get_g_CubeName(), "b.cub|Finance");
}

} // namespace
} // namespace qel
