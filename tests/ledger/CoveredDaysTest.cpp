#include "examples/ledger/reference/PlainSums.h"

#include <gtest/gtest.h>

namespace qel::ledger {
namespace {

struct SpanCase {
    const char* what;
    LedgerCube cube;
    int from, to; ///< year, month and day in one number; 0: none
    std::optional<DaySpan> covered;
};

constexpr auto byMonths = LedgerCube::Months;
constexpr auto byDays = LedgerCube::Days;

constexpr CalendarDay DayOf(int number) { return {number / 10'000, number / 100 % 100, number % 100}; }

// The reference itself is checked against spans worked out by hand; the cube has 2023 to 2025.
const SpanCase spanCases[] = {
    {"a quarter", byMonths, 20240101, 20240331, DaySpan{"2024-01-01", "2024-03-99"}},
    {"only months that begin in it", byMonths, 20240115, 20240302, DaySpan{"2024-02-01", "2024-03-99"}},
    {"inside one month", byMonths, 20240503, 20240509, DaySpan{"2024-05-01", "2024-05-99"}},
    {"over the year's end", byMonths, 20231202, 20240101, DaySpan{"2024-01-01", "2024-01-99"}},
    {"no start", byMonths, 0, 20240229, DaySpan{"2024-02-01", "2024-02-99"}},
    {"the last month in full", byMonths, 20251201, 20251231, DaySpan{"2025-12-01", "2025-12-99"}},
    {"starts after the last month's first day", byMonths, 20251202, 20251231, std::nullopt},
    {"starts before the cube", byMonths, 19990101, 20230201, DaySpan{"2023-01-01", "2023-02-99"}},
    {"ends before the cube", byMonths, 19990101, 20221231, std::nullopt},
    {"reversed", byMonths, 20240502, 20240501, std::nullopt},
    {"days as they are", byDays, 20240115, 20240302, DaySpan{"2024-01-15", "2024-03-02"}},
    {"days cut at both ends", byDays, 19990101, 20990101, DaySpan{"2023-01-01", "2025-12-31"}},
    {"days after the last", byDays, 0, 20260101, std::nullopt},
};

TEST(CoveredDays, FollowTheRulesOfMonthsAndDays) {
    for (const SpanCase& spanCase : spanCases) {
        Selection selection;
        selection.cube = spanCase.cube;
        if (spanCase.from != 0) {
            selection.from = DayOf(spanCase.from);
        }
        selection.to = DayOf(spanCase.to);
        EXPECT_EQ(CoveredDays(selection, {2023, 1, 1}, {2025, 12, 31}), spanCase.covered) << spanCase.what;
    }
}

} // namespace
} // namespace qel::ledger
