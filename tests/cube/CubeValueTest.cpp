#include "cube/CubeValue.h"

#include "cube/MemberName.h"
#include "cube/ObsSel.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

#include <functional>

namespace qel::ModSetCube {
namespace {

using test::LedgerProvider;
using test::RecordingProvider;

/// What a caller owns of one call.
struct Call {
    std::string cubeName = "Finance";
    KeyList obsNames = {"1"}, obsNumbers = {"12"}, obsLevels = {"All"}, obsMembers = {""},
            activities = {"All"};
    std::string summaryLevel = "All", summaryMember = "All", accounts = "All", measure = "Amount";
    std::string moneySet = "All", plbs = "All", rh = "All", firma = "All", openingBalance = "All";
    std::string fromDate = "01/01/2020", toDate = "31/03/2020";

    ValueArguments Arguments() {
        return {cubeName,     obsNames,      obsNumbers,     obsLevels, obsMembers, activities,
                summaryLevel, summaryMember, accounts,       measure,   moneySet,   plbs,
                rh,           firma,         openingBalance, fromDate,  toDate};
    }
};

class CubeValueTest : public ::testing::Test {
protected:
    CubeValueTest() {
        thread_.CubeConnection = provider_.CreateConnection();
        thread_.CubeConnection->Open("TEXT", "", "", optionsUnspecified);
        LoadDates();
        provider_.TakeLog();
    }

    void LoadDates() {
        for (int i = 0; i < 24; ++i) {
            thread_.dates.CubeDates.push_back(AddMonths(DateFromDay({2019, 1, 1}), i));
            thread_.dates.CubeDateNames.push_back("[m" + std::to_string(i + 1) + "]");
        }
        thread_.dates.CubeMinDate = thread_.dates.CubeDates.front();
        thread_.dates.CubeMaxDate = thread_.dates.CubeDates.back();
    }

    Variant Value(Call& call) { return GetCubeValue(thread_, provider_, locale_, call.Arguments()); }

    RecordingProvider provider_ = LedgerProvider();
    Locale locale_;
    ThreadState thread_;
};

TEST_F(CubeValueTest, RunsOneStatementAndClosesIt) {
    Call call;
    provider_.cell = 1234.56;
    EXPECT_EQ(Value(call).As<double>(), 1234.56);
    const std::vector<std::string> log = {
        "statement WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(3,[m15]),[Measures].[Amount])    ' "
        "SELECT  "
        "{ [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Finance where (  "
        "[ActX].[OBSx].[All].[1].[12])",
        "close cellset"};
    EXPECT_EQ(provider_.log, log);
}

TEST_F(CubeValueTest, SumsEveryObsMemberOfThatName) {
    const struct {
        const char* what;
        const char* level;
        const char* member;
        const char* text;
    } cases[] = {
        {"one name under two parents", "Level2", "10",
         "\r\n Member [Obs].Sel as ' SUM ({  , [OBS].[All].[North].[10] , [OBS].[All].[South].[10] }) ' "},
        {"level and name in any letter case", "LEVEL2", "caf\xC3\xA9",
         "\r\n Member [Obs].Sel as ' SUM ({  , [OBS].[All].[South].[Caf\xC3\x89] }) ' "},
        {"an apostrophe is doubled", "Level2", "dan's",
         "\r\n Member [Obs].Sel as ' SUM ({  , [OBS].[All].[North].[Dan''s] }) ' "},
        {"no such member leaves the closing alone", "Level1", "10", " }) ' "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(BuildObsSel(thread_, provider_, c.level, c.member), c.text) << c.what;
    }
}

TEST_F(CubeValueTest, PutsTheObsMemberIntoTheStatement) {
    Call call;
    call.obsLevels = {" Level2 ", "Cost_Centers"};
    call.obsMembers = {" Dan's "};
    Value(call);
    ASSERT_EQ(provider_.log.size(), 3U);
    EXPECT_EQ(provider_.log[0], "catalog TEXT");
    EXPECT_NE(provider_.log[1].find("[Measures].[Amount])    '\r\n Member [Obs].Sel as ' SUM ({  , "
                                    "[OBS].[All].[North].[Dan''s] }) '  SELECT  {"),
              std::string::npos)
        << provider_.log[1];
}

TEST_F(CubeValueTest, CountsALevelsMembersIn16Bits) {
    auto& members = provider_.DimensionScript("OBS").levels[1].members;
    members.assign(32768, {"x", "[x]", 0});
    members.back().name = "last";
    EXPECT_EQ(BuildObsSel(thread_, provider_, "Level1", "last"),
              "\r\n Member [Obs].Sel as ' SUM ({  , [x] }) ' ");
    members.push_back({"one more", "[x]", 0});
    Call call;
    call.obsLevels = {"Level1"};
    EXPECT_EQ(Value(call).As<std::string>(), "#ERR 6");
}

TEST_F(CubeValueTest, GivesSelectionsBackAsSlicers) {
    Call call;
    call.rh = " 2 ";
    call.firma = " 3 ";
    call.openingBalance = "4";
    call.moneySet = "5 ";
    call.plbs = " 1 ";
    call.accounts = " 9 ";
    Value(call);
    EXPECT_EQ(call.rh, "[RH].[2]");
    EXPECT_EQ(call.firma, "[Firma].[3]");
    EXPECT_EQ(call.openingBalance, "[Opening_Balance].[4]");
    EXPECT_EQ(call.moneySet, "[MoneySet].[5]");
    EXPECT_EQ(call.plbs, " 1 ") << "never overwritten";
    EXPECT_EQ(call.accounts, " 9 ") << "never overwritten";
    Call everything;
    everything.rh = everything.firma = " all ";
    Value(everything);
    EXPECT_EQ(everything.rh, " all ") << "kept when it restricts nothing";
    EXPECT_EQ(everything.firma + everything.openingBalance + everything.moneySet, "");
}

TEST_F(CubeValueTest, AnswersWithoutTheCubeWhereTheDatesSaySo) {
    const struct {
        const char* from;
        const char* to;
        Variant result;
    } cases[] = {{"02/01/2020", "01/01/2020", "#ERR 11111111"},
                 {"01/01/2001", "31/12/2018", std::int16_t{0}},
                 {"01/01/2021", "31/12/2021", std::int16_t{0}},
                 {"soon", "31/12/2020", "#ERR 13"}};
    for (const auto& c : cases) {
        Call call;
        call.fromDate = c.from;
        call.toDate = c.to;
        call.firma = " 3 ";
        EXPECT_EQ(Value(call).Get(), c.result.Get()) << c.from;
        EXPECT_EQ(call.firma, " 3 ") << c.from;
    }
    EXPECT_TRUE(provider_.log.empty());
}

TEST_F(CubeValueTest, AnEmptyCellIsA16BitZero) {
    for (const Variant& empty : {Variant(Null{}), Variant(Empty{}), Variant("")}) {
        Call call;
        provider_.cell = empty;
        EXPECT_EQ(Value(call).Get(), Variant(std::int16_t{0}).Get()) << empty.TypeName();
    }
    Call call;
    provider_.cell = " ";
    EXPECT_EQ(Value(call).As<std::string>(), " ") << "a blank is a value";
    EXPECT_EQ(provider_.log.back(), "close cellset");
}

TEST_F(CubeValueTest, EveryFailureIsATextAndKeepsTheConnection) {
    const struct {
        const char* what;
        std::function<void(RecordingProvider&, ThreadState&, Call&)> spoil;
        const char* text;
    } cases[] = {
        {"the statement fails", [](auto& p, auto&, auto&) { p.failingStatement = -2147217904; },
         "#ERR -2147217904"},
        {"no such OBS level", [](auto&, auto&, auto& c) { c.obsLevels = {"Level9"}; }, "#ERR 3265"},
        {"an empty OBS level is looked up", [](auto&, auto&, auto& c) { c.obsLevels = {Variant()}; },
         "#ERR 3265"},
        {"a key that is no text", [](auto&, auto&, auto& c) { c.obsNames = {Variant(Null{})}; }, "#ERR 94"},
        {"no Date table", [](auto&, auto& t, auto&) { t.dates.CubeDates.clear(); }, "#ERR 9"},
        {"the catalog fails",
         [](auto& p, auto&, auto& c) {
             c.obsLevels = {"Level1"};
             p.failingCatalog = 5;
         },
         "#ERR 5"},
    };
    const ThreadState thread = thread_;
    for (const auto& c : cases) {
        Call call;
        thread_ = thread;
        provider_.failingStatement = provider_.failingCatalog = 0;
        c.spoil(provider_, thread_, call);
        EXPECT_EQ(Value(call).Get(), Variant(c.text).Get()) << c.what;
        EXPECT_EQ(thread_.CubeConnection->State(), stateOpen) << c.what;
    }
}

TEST_F(CubeValueTest, AListWithoutKeysIsAListOfAnEmptyKey) {
    Call call;
    call.obsNames = call.obsNumbers = call.activities = {};
    Value(call);
    EXPECT_NE(provider_.log[0].find(" where (  [ActX].[OBSx].[All].[].[])"), std::string::npos)
        << provider_.log[0];
}

TEST_F(CubeValueTest, NamesASummaryGroupOnlyByItsKey) {
    const struct {
        const char* what;
        const char* dimType;
        const char* key;
        const char* name;
        bool asksTheCube;
    } cases[] = {
        {"a key in letters that is long is a name", "SuperSum1", "Sales", "Sales", false},
        {"so it is in Hebrew, counted in characters", "SuperSum1", "מכרת", "מכרת", false},
        {"three Hebrew letters are a key", "SuperSum1", "מכר", "Revenue", true},
        {"three letters are a key", "SuperSum1", "abc", "Revenue", true},
        {"a long number is a key", "superSUM2", "41000", "Revenue", true},
        {"a number as people write it is a key", "SuperSum2", "1,000", "Revenue", true},
        {"other dimensions have no names", "Accounts", "41", "", false},
        {"a name wins over the dimension", "Accounts", "Sales", "Sales", false},
    };
    provider_.rowMembers = {{"41", "[x]", "SuperSum1Name", "Revenue", 1}, {"42", "[y]", "", "Other", 1}};
    for (const auto& c : cases) {
        provider_.TakeLog();
        EXPECT_EQ(GetMemberName(thread_, provider_, locale_, "Finance", c.dimType, c.key), c.name) << c.what;
        EXPECT_EQ(provider_.Statements().size(), c.asksTheCube ? 1U : 0U) << c.what;
    }
    provider_.rowMembers[0].caption.reset();
    EXPECT_EQ(GetMemberName(thread_, provider_, locale_, "Finance", "SuperSum1", "41"), "")
        << "a null caption";
    provider_.rowMembers.clear();
    EXPECT_THROW(GetMemberName(thread_, provider_, locale_, "Finance", "SuperSum1", "41"), AutomationError);
}

} // namespace
} // namespace qel::ModSetCube
