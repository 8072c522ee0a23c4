// Data sources other than embedded cubes, read through the machine's own objects.

#include "tests/platform/data/ado/ProviderDoubles.h"
#include "tests/server/LedgerCall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

const char* const connectionText =
    "Provider=MSOLAP;Data Source=double.cub;Initial Catalog=LedgerFNC;Client Cache "
    "Size=25;Auto Synch Period=10000";

LedgerCall ThroughProvider(LedgerCall call) {
    call.cubeFile = "double.cub";
    return call;
}

class AdoProvider : public testing::Test {
protected:
    std::string TextOfDemo(const LedgerCall& call) {
        Arguments arguments = ArgumentsOf(call);
        return TextIn(Invoke(object_.Get(), L"QelFuncDemo", arguments).value);
    }

    const Apartment apartment_;
    ProviderDoubles doubles_;
    ComPointer<IDispatch> object_ = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
};

TEST_F(AdoProvider, GivesTheSameValuesOverOneConnection) {
    std::vector<LedgerCall> calls(4);
    calls[1].selections[2] = "4111";
    calls[2].obsLevel = "Level2";
    calls[2].obsMember = "Stores";
    calls[3].obsLevel = "Cost_Centers";
    calls[3].obsMember = "1110";
    for (const LedgerCall& call : calls) {
        Arguments arguments = ArgumentsOf(ThroughProvider(call));
        EXPECT_EQ(ValueThroughCom(object_.Get(), arguments), ValueInProcess(call));
    }
    const ProviderLog& log = doubles_.Log();
    EXPECT_THAT(log.opened, ElementsAre(std::string(connectionText) + "|||-1"));
    EXPECT_EQ(log.catalogs, std::vector<std::string>(2, connectionText))
        << "the Date table and the OBS members";
    EXPECT_EQ(log.statements.size(), calls.size());
    EXPECT_THAT(log.statements.front(), StartsWith("WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(12,"));
    EXPECT_EQ(log.cellsetsClosed, static_cast<int>(calls.size()));
    EXPECT_EQ(log.connectionsClosed, 0);
}

TEST_F(AdoProvider, GivesTheSameNames) {
    const auto nameThrough = [&](const std::string& file, const std::string& code) {
        Arguments arguments;
        for (const std::string& text : {file, std::string("LedgerFNC"), std::string("SuperSum1"), code}) {
            arguments.push_back(Text(text));
        }
        return TextIn(Invoke(object_.Get(), L"QelName", arguments).value);
    };
    EXPECT_EQ(nameThrough("double.cub", "1"), "Fixed assets");
    EXPECT_EQ(nameThrough(QEL_TEST_CUBE, "1"), "Fixed assets");
    EXPECT_EQ(nameThrough("double.cub", "99"), "-") << "a code that the cube lacks";
    EXPECT_EQ(doubles_.Log().connectionsClosed, 1) << "another cube file takes the connection";
}

TEST_F(AdoProvider, FailuresArriveWithTheirOwnNumbers) {
    ProviderLog& log = doubles_.Log();
    log.openFailure = ScriptedFailure{static_cast<HRESULT>(0x80004005), "no such file", "double"};
    EXPECT_EQ(TextOfDemo(ThroughProvider({})), "#err -2147467259");
    log.openFailure = ScriptedFailure{static_cast<HRESULT>(0x800A0E7A), "Provider cannot be found", "ADODB"};
    EXPECT_EQ(TextOfDemo(ThroughProvider({})), "#err 3706");
    log.openFailure.reset();
    log.statementFailure = ScriptedFailure{static_cast<HRESULT>(0x80040E14), "syntax", "double"};
    EXPECT_EQ(TextOfDemo(ThroughProvider({})), "#ERR -2147217900");
    log.statementFailure.reset();

    Arguments arguments = ArgumentsOf(ThroughProvider({}));
    EXPECT_EQ(ValueThroughCom(object_.Get(), arguments), ValueInProcess({}));
}

TEST_F(AdoProvider, NoConnectionOutlivesTheObject) {
    Arguments arguments = ArgumentsOf(ThroughProvider({}));
    ValueThroughCom(object_.Get(), arguments);
    doubles_.Log().statementFailure = ScriptedFailure{E_FAIL, "failed", "double"};
    TextOfDemo(ThroughProvider({}));
    doubles_.Log().openFailure = ScriptedFailure{E_FAIL, "failed", "double"};
    LedgerCall other = ThroughProvider({});
    other.cubeName = "LedgerHebrewFNC";
    TextOfDemo(other);
    object_.Reset();
    EXPECT_EQ(doubles_.Log().alive, 0);
}

TEST_F(AdoProvider, EmbeddedCubesDoNotTouchIt) {
    Arguments arguments = ArgumentsOf({});
    EXPECT_EQ(ValueThroughCom(object_.Get(), arguments), ValueInProcess({}));
    EXPECT_TRUE(doubles_.Log().opened.empty());
    EXPECT_TRUE(doubles_.Log().catalogs.empty());
}

} // namespace
} // namespace qel::test
