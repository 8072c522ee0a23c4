#include "engine/eval/CellArithmetic.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qel::engine {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

CellValue E(std::int64_t scaled, std::uint8_t decimals = 0) { return CellValue::Exact(scaled, decimals); }
CellValue I(double number) { return CellValue::Inexact(number); }

std::string Text(const CellValue& value) {
    if (value.isEmpty) {
        return "empty";
    }
    return value.isExact ? fmt::format("{}e-{}", value.scaled, value.decimals)
                         : fmt::format("{}", value.number);
}

TEST(CellArithmetic, StaysExactWithin64Bits) {
    const CellValue empty;
    const struct {
        CellValue result;
        const char* text;
    } cases[] = {
        {Add(E(150, 2), E(5, 1)), "200e-2"},
        {Add(E(5, 1), E(150, 2)), "200e-2"},
        {Add(E(largest), E(-1)), "9223372036854775806e-0"},
        {Add(E(largest), E(1)), "9.223372036854776e+18"},
        {Add(E(smallest), E(-1)), "-9.223372036854776e+18"},
        {Add(E(smallest), E(largest)), "-1e-0"},
        {Add(E(largest), E(1, 2)), "9.223372036854776e+18"}, // aligning the decimals overflows
        {Add(E(1), I(0.5)), "1.5"},
        {Add(empty, E(7, 1)), "7e-1"},
        {Add(E(7, 1), empty), "7e-1"},
        {Add(empty, empty), "empty"},
        {Negate(E(largest)), "-9223372036854775807e-0"},
        {Negate(E(smallest)), "9.223372036854776e+18"},
        {Negate(empty), "empty"},
        {Multiply(E(-25, 1), E(4, 2)), "-100e-3"},
        {Multiply(E(3'037'000'500), E(3'037'000'500)), "9.22337203700025e+18"},
        {Multiply(E(smallest), E(-1)), "9.223372036854776e+18"},
        {Multiply(E(-1), E(smallest)), "9.223372036854776e+18"},
        {Multiply(E(smallest), E(1)), "-9223372036854775808e-0"},
        {Multiply(E(smallest), E(0)), "0e-0"},
        {Multiply(E(1, 10), E(1, 10)), "1.0000000000000001e-20"},
        {Multiply(empty, E(3)), "empty"},
        {Divide(E(1), E(4)), "0.25"},
        {Divide(empty, E(0)), "empty"},
        {Divide(E(-1), empty), "-inf"},
        {NumberFromText("12.340"), "12340e-3"},
        {NumberFromText("9223372036854775808"), "9.223372036854776e+18"},
        {NumberFromText("0.1234567890123456789"), "0.12345678901234568"},
        {NumberFromText("1.5E3"), "1500"},
        {NumberFromText("1e999"), "inf"},
        {NumberFromText("1e-999"), "0"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Text(c.result), c.text);
    }
}

TEST(CellArithmetic, ComparesByValue) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // Ascending; equal values are in one group.
    const std::vector<std::vector<CellValue>> groups = {
        {I(nan)},
        {I(-std::numeric_limits<double>::infinity())},
        {E(smallest), I(-9223372036854775808.0)},
        {E(-1, 2), I(-0.01)},
        {CellValue::Empty(), E(0), E(0, 5), I(-0.0)},
        {E(10, 2), E(1, 1), I(0.1)},
        {E(9007199254740992)},
        {E(9007199254740993)}, // the same double as the previous value
        {E(largest), I(9223372036854775808.0)},
    };
    for (std::size_t i = 0; i < groups.size(); ++i) {
        for (std::size_t j = 0; j < groups.size(); ++j) {
            for (const CellValue& a : groups[i]) {
                for (const CellValue& b : groups[j]) {
                    const int expected = i < j ? -1 : static_cast<int>(i > j);
                    EXPECT_EQ(Compare(a, b), expected) << Text(a) << " against " << Text(b);
                }
            }
        }
    }
}

TEST(CellArithmetic, GivesTheNearestDouble) {
    const struct {
        std::int64_t scaled;
        std::uint8_t decimals;
        double number;
    } cases[] = {
        {537099, 2, 5370.99},
        {-1, 2, -0.01},
        {9007199254740993, 2, 90071992547409.93},
        {1234567890123456789, 9, 1234567890.123456789},
        {largest, 0, 9223372036854775807.0},
        {smallest, 2, -92233720368547758.08},
        {smallest, 18, -9.223372036854775808},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CellValue::Exact(c.scaled, c.decimals).number, c.number) << c.scaled;
    }
}

} // namespace
} // namespace qel::engine
