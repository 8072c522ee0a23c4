#include "platform/value/AutomationDate.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel {
namespace {

using test::ErrorOf;

constexpr Locale dayFirst{DateOrder::DayMonthYear, '/', '.', ','};
constexpr Locale monthFirst{DateOrder::MonthDayYear, '/', '.', ','};
constexpr Locale yearFirst{DateOrder::YearMonthDay, '-', '.', ','};

TEST(Date, CountsDaysFromItsEpoch) {
    EXPECT_EQ(DateFromDay({1899, 12, 30}).days, 0);
    EXPECT_EQ(DateFromDay({1900, 3, 1}).days, 61);
    EXPECT_EQ(DateFromDay({2020, 3, 31}).days, 43921);
    EXPECT_EQ(DateFromDay({100, 1, 1}).days, -657434);
    EXPECT_EQ(DateFromDay({9999, 12, 31}).days, 2958465);
}

TEST(Date, KeepsEveryDayThroughTextInEveryOrder) {
    const int first = -1825; // in 1895
    const int last = 73500;  // in 2101
    for (int day = first; day < last; ++day) {
        const AutomationDate date{static_cast<double>(day)};
        ASSERT_EQ(DateFromDay(DayFromDate(date)), date);
        for (const Locale& locale : {dayFirst, monthFirst, yearFirst}) {
            ASSERT_EQ(ParseDate(FormatShortDate(date, locale), locale), date) << date.days;
        }
    }
}

TEST(Date, RefusesDaysThatNoCalendarHas) {
    for (const CalendarDay day : {CalendarDay{2021, 2, 29},
                                  {2020, 4, 31},
                                  {2020, 13, 1},
                                  {2020, 0, 1},
                                  {2020, 1, 0},
                                  {99, 12, 31},
                                  {10000, 1, 1},
                                  {2020, 1, -2147483647}}) {
        EXPECT_EQ(ErrorOf([&] { DateFromDay(day); }), ErrorNumber::InvalidProcedureCall) << day.year;
    }
    for (const double days : {-657435.0, 2958466.0, 1e300, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(ErrorOf([&] { FormatShortDate({days}, dayFirst); }), ErrorNumber::Overflow) << days;
    }
    EXPECT_EQ(ErrorOf([] { AddMonths(DateFromDay({9999, 12, 1}), 1); }), ErrorNumber::InvalidProcedureCall);
}

TEST(Date, FormatsTheTimeOnlyWhenThereIsOne) {
    EXPECT_EQ(FormatShortDate({43921}, dayFirst), "31/03/2020");
    EXPECT_EQ(FormatShortDate({43921}, monthFirst), "03/31/2020");
    EXPECT_EQ(FormatShortDate({43921.5}, yearFirst), "2020-03-31 12:00:00");
    EXPECT_EQ(FormatShortDate({43921.999999}, dayFirst), "01/04/2020") << "rounds up into the next day";
    EXPECT_EQ(FormatShortDate({-1.25}, dayFirst), "29/12/1899 06:00:00")
        << "a negative date's time counts up";
    EXPECT_EQ(WithoutTime({-1.25}).days, -1);
    EXPECT_EQ(ParseDate("29/12/1899 06:00", dayFirst).days, -1.25);
}

TEST(Date, MovesMonthsAndKeepsTheDayWhereItCan) {
    EXPECT_EQ(AddMonths(DateFromDay({2020, 1, 31}), 1), DateFromDay({2020, 2, 29}));
    EXPECT_EQ(AddMonths(DateFromDay({2020, 12, 15}), 1), DateFromDay({2021, 1, 15}));
    EXPECT_EQ(AddMonths(DateFromDay({2020, 1, 31}), -2), DateFromDay({2019, 11, 30}));
    EXPECT_EQ(AddMonths({DateFromDay({2020, 1, 1}).days + 0.5}, 1).days,
              DateFromDay({2020, 2, 1}).days + 0.5);
}

TEST(Date, ReadsWhatPeopleWrite) {
    const struct {
        const char* text;
        const Locale& locale;
        CalendarDay day;
    } cases[] = {
        {"5/3/2020", dayFirst, {2020, 3, 5}},       {"5/3/2020", monthFirst, {2020, 5, 3}},
        {"20/3/5", yearFirst, {2020, 3, 5}},        {"31/3/2020", monthFirst, {2020, 3, 31}},
        {"3/31/2020", dayFirst, {2020, 3, 31}},     {"2020-03-05", dayFirst, {2020, 3, 5}},
        {"5.3.20", dayFirst, {2020, 3, 5}},         {"5 3 2020", dayFirst, {2020, 3, 5}},
        {" 5 / 3 / 2020 ", dayFirst, {2020, 3, 5}}, {"1/1/29", dayFirst, {2029, 1, 1}},
        {"1/1/30", dayFirst, {1930, 1, 1}},         {"3/2020", dayFirst, {2020, 3, 1}},
        {"2020/3", monthFirst, {2020, 3, 1}},       {"5/3/2020 00:00:00", dayFirst, {2020, 3, 5}},
        {"29/02/2020", dayFirst, {2020, 2, 29}},    {"99/12/31", dayFirst, {1999, 12, 31}},
        {"3/2020 0:00", dayFirst, {2020, 3, 1}},    {"0:00", dayFirst, {1899, 12, 30}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ParseDate(c.text, c.locale), DateFromDay(c.day)) << c.text;
    }
    EXPECT_EQ(ParseDate("5/3/2020 6:30 pm", dayFirst).days, DateFromDay({2020, 3, 5}).days + 18.5 / 24);
    EXPECT_EQ(ParseDate("12:00 AM", dayFirst).days, 0);
    for (const char* text :
         {"", " ", "All", "5", "5/3", "29/02/2021", "31/31/2020", "5/3/2020/1", "5//3/2020", "5/3/20200",
          "5/3/2020 25:00", "5/3/2020 10:60", "5/3/2020 x", "13:00 PM", "-5/3/2020", "\u00A05/3/2020",
          "5/3/2020 10", "99999999999/1/1", "ינואר 2020"}) {
        EXPECT_EQ(ErrorOf([&] { ParseDate(text, dayFirst); }), ErrorNumber::TypeMismatch) << text;
    }
}

} // namespace
} // namespace qel
