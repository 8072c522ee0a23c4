#include "engine/eval/CodeRanges.h"

#include <gtest/gtest.h>

#include <random>

namespace qel::engine {
namespace {

constexpr std::uint32_t codes = 24;

/// The ranges of set bits: ascending, disjoint, not adjacent.
std::vector<KeyRange> RangesOf(std::uint32_t bits) {
    std::vector<KeyRange> ranges;
    for (std::uint32_t code = 0; code < codes; ++code) {
        if ((bits >> code & 1U) == 0) {
            continue;
        }
        if (!ranges.empty() && ranges.back().last == code) {
            ranges.back().last = code + 1;
        } else {
            ranges.push_back({code, code + 1});
        }
    }
    return ranges;
}

TEST(CodeRanges, AreSetsOfCodes) {
    std::mt19937 random(3);
    for (int round = 0; round < 20'000; ++round) {
        const std::uint32_t all = (1U << codes) - 1;
        const auto anyBits = [&] { return static_cast<std::uint32_t>(random()) & all; };
        std::uint32_t left = anyBits();
        std::uint32_t right = anyBits();
        left &= round % 3 == 0 ? anyBits() : all; // sometimes few codes
        right &= round % 5 == 0 ? all >> (anyBits() % codes) : anyBits();
        std::vector<KeyRange> common;
        Intersect(RangesOf(left), RangesOf(right), common);
        ASSERT_EQ(common, RangesOf(left & right)) << left << " and " << right;
        ASSERT_EQ(Intersects(RangesOf(left), RangesOf(right)), (left & right) != 0)
            << left << " and " << right;

        std::vector<KeyRange> joined = RangesOf(right);
        const std::vector<KeyRange> more = RangesOf(left);
        joined.insert(joined.end(), more.begin(), more.end());
        ASSERT_EQ(JoinDisjoint(joined), (left & right) == 0) << left << " and " << right;
        if ((left & right) == 0) {
            ASSERT_EQ(joined, RangesOf(left | right)) << left << " and " << right;
        }
    }
    EXPECT_TRUE(CoversAll(RangesOf((1U << codes) - 1), codes));
    EXPECT_FALSE(CoversAll(RangesOf(((1U << codes) - 1) & ~1U), codes));
    EXPECT_FALSE(CoversAll({}, codes));
}

} // namespace
} // namespace qel::engine
