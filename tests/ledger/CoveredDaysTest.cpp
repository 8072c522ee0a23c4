#include "examples/ledger/reference/PlainSums.h"

#include <gtest/gtest.h>

namespace qel::ledger {
namespace {

struct SpanCase {
    const char* what;
    LedgerCube cube;
    std::optional<CalendarDay> from;
    CalendarDay to;
    std::optional<DaySpan> covered;
};

constexpr auto byMonths = LedgerCube::Months;
constexpr auto byDays = LedgerCube::Days;

// The reference itself is checked against spans worked out by hand; the cube has 2023 to 2025.
const SpanCase spanCases[] = {
    {"a quarter", byMonths, CalendarDay{2024, 1, 1}, {2024, 3, 31}, DaySpan{"2024-01-01", "2024-03-99"}},
    {"only months that begin in it",
     byMonths,
     CalendarDay{2024, 1, 15},
     {2024, 3, 2},
     DaySpan{"2024-02-01", "2024-03-99"}},
    {"inside one month",
     byMonths,
     CalendarDay{2024, 5, 3},
     {2024, 5, 9},
     DaySpan{"2024-05-01", "2024-05-99"}},
    {"over the year's end",
     byMonths,
     CalendarDay{2023, 12, 2},
     {2024, 1, 1},
     DaySpan{"2024-01-01", "2024-01-99"}},
    {"no start", byMonths, std::nullopt, {2024, 2, 29}, DaySpan{"2024-02-01", "2024-02-99"}},
    {"the last month in full",
     byMonths,
     CalendarDay{2025, 12, 1},
     {2025, 12, 31},
     DaySpan{"2025-12-01", "2025-12-99"}},
    {"starts after the last month's first day",
     byMonths,
     CalendarDay{2025, 12, 2},
     {2025, 12, 31},
     std::nullopt},
    {"starts before the cube",
     byMonths,
     CalendarDay{1999, 1, 1},
     {2023, 2, 1},
     DaySpan{"2023-01-01", "2023-02-99"}},
    {"ends before the cube", byMonths, CalendarDay{1999, 1, 1}, {2022, 12, 31}, std::nullopt},
    {"reversed", byMonths, CalendarDay{2024, 5, 2}, {2024, 5, 1}, std::nullopt},
    {"days as they are", byDays, CalendarDay{2024, 1, 15}, {2024, 3, 2}, DaySpan{"2024-01-15", "2024-03-02"}},
    {"days cut at both ends",
     byDays,
     CalendarDay{1999, 1, 1},
     {2099, 1, 1},
     DaySpan{"2023-01-01", "2025-12-31"}},
    {"days after the last", byDays, std::nullopt, {2026, 1, 1}, std::nullopt},
};

TEST(CoveredDays, FollowTheRulesOfMonthsAndDays) {
    for (const SpanCase& spanCase : spanCases) {
        Selection selection;
        selection.cube = spanCase.cube;
        selection.from = spanCase.from;
        selection.to = spanCase.to;
        EXPECT_EQ(CoveredDays(selection, {2023, 1, 1}, {2025, 12, 31}), spanCase.covered) << spanCase.what;
    }
}

} // namespace
} // namespace qel::ledger
