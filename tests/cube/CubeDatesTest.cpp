#include "cube/CubeDates.h"

#include "tests/helpers/Day.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

#include <functional>

namespace qel::ModSetCube {
namespace {

using test::Day;
using test::LedgerProvider;
using test::MonthlyDates;
using test::RecordingProvider;
using test::ScriptedDimension;

/// All, Year, Quarter, Month, Day: 31 December 2019 and 1 and 2 January 2020, quarters named oddly.
ScriptedDimension DailyDates() {
    return {"Date",
            {{"All", {{"All", "", 0}}},
             {"Year", {{"2019", "", 0}, {"2020", "", 0}}},
             {"Quarter", {{"Last", "", 0}, {"רבעון 1", "", 1}}},
             {"Month", {{"12", "", 0}, {"1", "", 1}}},
             {"Day", {{"31", "[d1]", 0}, {"1", "[d2]", 1}, {"2", "[d3]", 1}}}}};
}

/// All, Year, Month.
ScriptedDimension DatesWithoutQuarters() {
    return {"Date",
            {{"All", {{"All", "", 0}}},
             {"Year", {{"19", "", 0}, {"2020", "", 0}}},
             {"Month", {{"12", "[m1]", 0}, {" 1 ", "[m2]", 1}}}}};
}

std::vector<test::ScriptedMember>& MonthsOf(RecordingProvider& provider) {
    return provider.DimensionScript("Date").levels[3].members;
}

class CubeDatesTest : public ::testing::Test {
protected:
    CubeDatesTest() {
        thread_.CubeConnection = provider_.CreateConnection();
        thread_.provider = &provider_;
        thread_.CubeConnection->Open("TEXT", "", "", optionsUnspecified);
        provider_.TakeLog();
    }

    RecordingProvider provider_ = LedgerProvider();
    ThreadState thread_;
};

TEST_F(CubeDatesTest, LoadsMonthsOrDaysWhateverTheLevelsBetweenAreCalled) {
    ScriptedDimension unnamed = MonthlyDates(2020, 1, 2020, 3);
    unnamed.levels[3].members[1].name = unnamed.levels[3].members[2].name = "";
    const struct {
        const char* what;
        ScriptedDimension script;
        std::vector<AutomationDate> dates;
        std::vector<std::string> names;
    } cases[] = {
        {"months by year and month",
         MonthlyDates(2019, 12, 2020, 2),
         {Day(2019, 12, 1), Day(2020, 1, 1), Day(2020, 2, 1)},
         {"[Date].[2019].[12]", "[Date].[2020].[1]", "[Date].[2020].[2]"}},
        {"days",
         DailyDates(),
         {Day(2019, 12, 31), Day(2020, 1, 1), Day(2020, 1, 2)},
         {"[d1]", "[d2]", "[d3]"}},
        {"months right under their year",
         DatesWithoutQuarters(),
         {Day(2019, 12, 1), Day(2020, 1, 1)},
         {"[m1]", "[m2]"}},
        {"a month without a name has no date",
         unnamed,
         {Day(2020, 1, 1), {}, {}},
         {"[Date].[2020].[1]", "[Date].[2020].[2]", "[Date].[2020].[3]"}},
    };
    for (const auto& c : cases) {
        provider_.DimensionScript("Date") = c.script;
        EXPECT_EQ(LoadCubeDates(thread_), 0);
        EXPECT_EQ(thread_.dates.CubeDates, c.dates) << c.what;
        EXPECT_EQ(thread_.dates.CubeDateNames, c.names) << c.what;
        EXPECT_EQ(thread_.dates.CubeMinDate, c.dates.front()) << c.what;
        EXPECT_EQ(thread_.dates.CubeMaxDate, c.dates.back()) << c.what;
        EXPECT_EQ(provider_.TakeLog(), std::vector<std::string>{"catalog TEXT"});
    }
}

TEST_F(CubeDatesTest, AnOutdatedLayoutLeavesTheTableAlone) {
    LoadCubeDates(thread_);
    provider_.DimensionScript("actx").levels.pop_back();
    provider_.DimensionScript("Date") = DailyDates();
    EXPECT_EQ(LoadCubeDates(thread_), 9999);
    EXPECT_EQ(thread_.dates.CubeDates.size(), 24U);
}

TEST_F(CubeDatesTest, RaisesForWhatIsNoCalendarAndKeepsTheOldTable) {
    LoadCubeDates(thread_);
    const struct {
        const char* what;
        std::function<void(RecordingProvider&)> spoil;
        std::int32_t number;
    } cases[] = {
        {"no Date dimension", [](auto& p) { p.DimensionScript("Date").name = "Calendar"; }, 3265},
        {"no ActX dimension", [](auto& p) { p.DimensionScript("ActX").name = "Other"; }, 3265},
        {"a month in words", [](auto& p) { MonthsOf(p)[0].name = "ינואר"; }, 13},
        {"month 13", [](auto& p) { MonthsOf(p)[23].name = "13"; }, 5},
        {"no months", [](auto& p) { MonthsOf(p).clear(); }, 9},
        {"no levels", [](auto& p) { p.DimensionScript("Date").levels.resize(1); }, 9},
        {"the catalog fails", [](auto& p) { p.failingCatalog = -2147467259; }, -2147467259},
        {"no connection", [](auto&) {}, 91},
    };
    for (const auto& c : cases) {
        RecordingProvider spoiled = LedgerProvider();
        c.spoil(spoiled);
        ThreadState thread = thread_;
        thread.provider = &spoiled;
        if (c.number == 91) {
            thread.CubeConnection.reset();
        }
        EXPECT_EQ(test::ErrorOf([&] { LoadCubeDates(thread); }), c.number) << c.what;
        EXPECT_EQ(thread.dates.CubeDates.size(), 24U) << c.what;
    }
}

} // namespace
} // namespace qel::ModSetCube
