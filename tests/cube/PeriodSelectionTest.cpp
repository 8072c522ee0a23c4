#include "cube/PeriodSelection.h"

#include "tests/helpers/Day.h"
#include "tests/helpers/ErrorOf.h"

#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

using test::Day;

/// Marks an omitted day.
constexpr CalendarDay none{1899, 12, 30};

DateTable TableOf(std::vector<AutomationDate> dates, std::vector<std::string> names) {
    return {dates, std::move(names), dates.front(), dates.back()};
}

/// Months from November 2019 to April 2020.
DateTable Months() {
    return TableOf({Day(2019, 11, 1), Day(2019, 12, 1), Day(2020, 1, 1), Day(2020, 2, 1), Day(2020, 3, 1),
                    Day(2020, 4, 1)},
                   {"2019-11", "2019-12", "2020-01", "2020-02", "2020-03", "2020-04"});
}

/// Days from 28 February to 3 March 2020.
DateTable Days() {
    return TableOf({Day(2020, 2, 28), Day(2020, 2, 29), Day(2020, 3, 1), Day(2020, 3, 2), Day(2020, 3, 3)},
                   {"28", "29", "1", "2", "3"});
}

/// "COUNT to MEMBER", or the result that needs no cube.
std::string Selected(const DateTable& table, DayRange days) {
    if (const auto known = ClampToCube(table, days)) {
        return known->Is<std::string>() ? known->As<std::string>()
                                        : std::to_string(known->As<std::int16_t>()) + " at once";
    }
    const auto span = FindPeriods(table, days);
    return span ? std::to_string(span->count) + " to " + span->last : "0 at the end";
}

TEST(PeriodSelection, CountsTheMonthsOfTheDays) {
    const struct {
        const char* what;
        CalendarDay from, to;
        const char* selected;
    } cases[] = {
        {"a quarter", {2020, 1, 1}, {2020, 3, 31}, "3 to 2020-03"},
        {"over the year's end", {2019, 11, 1}, {2020, 2, 29}, "4 to 2020-02"},
        {"one month", {2020, 2, 1}, {2020, 2, 29}, "1 to 2020-02"},
        {"one day, the first", {2020, 2, 1}, {2020, 2, 1}, "1 to 2020-02"},
        {"days inside one month select that month", {2020, 2, 10}, {2020, 2, 20}, "1 to 2020-02"},
        {"a start inside a month leaves that month out", {2020, 1, 2}, {2020, 3, 31}, "2 to 2020-03"},
        {"a start before the cube", {2001, 1, 1}, {2019, 12, 31}, "2 to 2019-12"},
        {"an end after the cube", {2020, 3, 1}, {2030, 1, 1}, "2 to 2020-04"},
        {"the whole cube from outside", {2001, 1, 1}, {2030, 1, 1}, "6 to 2020-04"},
        {"the last month's own days", {2020, 4, 1}, {2020, 4, 30}, "1 to 2020-04"},
        {"a start after the last month's first day", {2020, 4, 2}, {2020, 4, 30}, "0 at once"},
        {"wholly before", {2019, 1, 1}, {2019, 10, 31}, "0 at once"},
        {"wholly after", {2020, 5, 1}, {2020, 5, 31}, "0 at once"},
        {"the day before the cube begins", {2019, 10, 31}, {2019, 10, 31}, "0 at once"},
        {"end before start", {2020, 2, 2}, {2020, 2, 1}, "#ERR 11111111"},
        {"end before start is told before the cube's dates", {2030, 1, 2}, {2030, 1, 1}, "#ERR 11111111"},
        {"no start means the end's month", none, {2020, 2, 20}, "1 to 2020-02"},
        {"no start, end after the cube", none, {2030, 1, 1}, "1 to 2020-04"},
        {"no start, end before the cube", none, {2019, 1, 1}, "0 at once"},
        {"no dates at all", none, none, "0 at once"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Selected(Months(), {DateFromDay(c.from), DateFromDay(c.to)}), c.selected) << c.what;
    }
}

TEST(PeriodSelection, CountsDaysWhenTheCubeHasThem) {
    EXPECT_EQ(Selected(Days(), {Day(2020, 2, 28), Day(2020, 3, 1)}), "3 to 1") << "over the leap day";
    EXPECT_EQ(Selected(Days(), {Day(2020, 2, 29), Day(2020, 2, 29)}), "1 to 29");
    EXPECT_EQ(Selected(Days(), {Day(2020, 1, 1), Day(2020, 12, 31)}), "5 to 3");
    EXPECT_EQ(Selected(Days(), {Day(2020, 3, 4), Day(2020, 3, 4)}), "0 at once");
}

TEST(PeriodSelection, TakesTheTimeOfDayFromTheEndAlone) {
    EXPECT_EQ(Selected(Days(), {Day(2020, 2, 28), {Day(2020, 2, 29).days + 0.9}}), "2 to 29");
    EXPECT_EQ(Selected(Days(), {{Day(2020, 2, 28).days + 0.5}, Day(2020, 3, 1)}), "2 to 1")
        << "a start in the afternoon leaves its day out";
    EXPECT_EQ(Selected(Days(), {{Day(2020, 2, 29).days + 0.5}, Day(2020, 2, 29)}), "#ERR 11111111");
    EXPECT_EQ(Selected(Days(), {{Day(2020, 2, 29).days + 0.5}, {Day(2020, 2, 29).days + 0.6}}), "1 to 29");
    EXPECT_EQ(Selected(Days(), {{Day(2020, 3, 3).days + 0.5}, {Day(2020, 3, 3).days + 0.6}}), "1 to 3")
        << "the cube's last day is not after its dates";
}

TEST(PeriodSelection, RaisesForATableWithoutPeriods) {
    EXPECT_EQ(test::ErrorOf([] {
                  FindPeriods(DateTable(), {Day(2020, 1, 1), Day(2020, 4, 1)});
              }),
              ErrorNumber::SubscriptOutOfRange);
}

} // namespace
} // namespace qel::ModSetCube
