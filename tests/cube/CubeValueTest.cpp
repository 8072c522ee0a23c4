#include "cube/CubeValue.h"

#include "cube/CubeConnection.h"
#include "cube/CubeDates.h"
#include "cube/NameQuery.h"
#include "cube/ObsMembers.h"
#include "tests/helpers/Day.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace qel::ModSetCube {
namespace {

using test::LedgerProvider;
using test::RecordingProvider;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// One call, and what is made of its lists and dates.
struct Call : ValueCall {
    Call() : ValueCall{.CubeName = "Finance", .Summary_Group = "All", .Measure = "Amount"} {}

    ValueKeys keys{"1", "12", "All", "", "All"};
    DayRange days{test::Day(2020, 1, 1), test::Day(2020, 3, 31)};
};

class CubeValueTest : public ::testing::Test {
protected:
    CubeValueTest() {
        OpenThreadConnection(thread_, provider_, {"a.cub", "Finance"});
        LoadCubeDates(thread_);
        provider_.TakeLog();
    }

    Variant Value(const Call& call) {
        return GetCubeValue(thread_, provider_, locale_, call, call.keys, call.days).value;
    }

    RecordingProvider provider_ = LedgerProvider();
    Locale locale_;
    ThreadState thread_;
};

TEST_F(CubeValueTest, FindsEveryObsMemberOfThatName) {
    EXPECT_THAT(*FindObsMembers(thread_, "Level2", "10"),
                ElementsAre("[OBS].[All].[North].[10]", "[OBS].[All].[South].[10]"));
    EXPECT_THAT(*FindObsMembers(thread_, "LEVEL2", "caf\xC3\xA9"),
                ElementsAre("[OBS].[All].[South].[Caf\xC3\x89]"));
    EXPECT_THAT(*FindObsMembers(thread_, "Level1", "10"), ElementsAre());
}

TEST_F(CubeValueTest, AsksForAnObsMemberOnceWhileTheCubeIsOpen) {
    Call call;
    call.keys.ObsLevel = " Level2 ";
    call.keys.ObsMember = " Dan's ";
    Value(call);
    Value(call);
    const auto catalog = "catalog " + test::ConnectionTextFor("a.cub");
    const auto sums = HasSubstr("SUM ({  , [OBS].[All].[North].[Dan''s] }) '");
    EXPECT_THAT(provider_.TakeLog(), ElementsAre(catalog, sums, "close cellset", sums, "close cellset"));
    call.keys.ObsMember = "10";
    Value(call);
    EXPECT_EQ(provider_.TakeLog().front(), catalog) << "another name";
    thread_.CubeConnection->Close();
    OpenThreadConnection(thread_, provider_, {"b.cub", "Finance"});
    provider_.TakeLog();
    Value(call);
    EXPECT_EQ(provider_.TakeLog().front(), "catalog " + test::ConnectionTextFor("b.cub")) << "another cube";
    call.keys.ObsLevel = "Level9";
    Value(call);
    Value(call);
    EXPECT_EQ(provider_.log.size(), 2U) << "a failure is not remembered";
}

TEST_F(CubeValueTest, CountsALevelsMembersIn16Bits) {
    auto& members = provider_.DimensionScript("OBS").levels[1].members;
    members.assign(32768, {"x", "[x]", 0});
    members.back().name = "last";
    EXPECT_EQ(*FindObsMembers(thread_, "Level1", "last"), ObsMembers{"[x]"});
    members.push_back({"one more", "[x]", 0});
    Call call;
    call.keys.ObsLevel = "Level1";
    EXPECT_EQ(Value(call).As<std::string>(), "#ERR 6");
}

TEST_F(CubeValueTest, AnswersWithoutTheCubeWhereTheDatesSaySo) {
    Call call;
    call.days.from.days += 400;
    call.keys.ObsName = Null{}; // no key is looked at
    EXPECT_EQ(Value(call).As<std::string>(), "#ERR 11111111");
    EXPECT_TRUE(provider_.log.empty());
}

TEST_F(CubeValueTest, AnEmptyCellIsA16BitZero) {
    for (const Variant& empty : {Variant(Null{}), Variant(Empty{}), Variant("")}) {
        provider_.cell = empty;
        EXPECT_EQ(Value({}).Get(), Variant(std::int16_t{0}).Get()) << empty.TypeName();
    }
    provider_.cell = " ";
    EXPECT_EQ(Value({}).As<std::string>(), " ") << "a blank is a value";
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
        {"no such OBS level", [](auto&, auto&, auto& c) { c.keys.ObsLevel = "Level9"; }, "#ERR 3265"},
        {"an empty OBS level is looked up", [](auto&, auto&, auto& c) { c.keys.ObsLevel = Variant(); },
         "#ERR 3265"},
        {"a key that is no text", [](auto&, auto&, auto& c) { c.keys.ObsName = Null{}; }, "#ERR 94"},
        {"no Date table", [](auto&, auto& t, auto&) { t.dates.CubeDates.clear(); }, "#ERR 9"},
        {"the catalog fails",
         [](auto& p, auto&, auto& c) {
             c.keys.ObsLevel = "Level1";
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
        const auto [value, failure] = GetCubeValue(thread_, provider_, locale_, call, call.keys, call.days);
        EXPECT_EQ(value.Get(), Variant(c.text).Get()) << c.what;
        EXPECT_EQ("#ERR " + std::to_string(failure.value().Number()), c.text) << c.what;
        EXPECT_EQ(thread_.CubeConnection->State(), stateOpen) << c.what;
    }
}

TEST_F(CubeValueTest, NamesASummaryGroupOnlyByItsKey) {
    const struct {
        const char *what, *dimType, *key, *name;
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
