#pragma once

#include "tests/helpers/FailingAllocation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// What a call gives while an allocation fails.
struct Outcome {
    std::string shown;
    bool hasFailed = false; ///< the allocation
};

/// Runs `call` with each of its allocations failing, or with each `step`-th; its outcome then is the usual
/// one or one of `others`, and the next call is right. At most `lost` allocations are not freed.
inline void FailEach(const std::function<Outcome(std::size_t failing)>& call,
                     const std::vector<std::string>& others, std::size_t lost = 0, std::size_t step = 1) {
    const std::string expected = call(0).shown;
    ASSERT_EQ(call(0).shown, expected);
    std::size_t number = 0;
    for (bool isMore = true; isMore && !testing::Test::HasFailure();) {
        const std::size_t living = LivingAllocations();
        {
            const Outcome outcome = call(number += step);
            isMore = outcome.hasFailed;
            EXPECT_TRUE(outcome.shown == expected ||
                        std::find(others.begin(), others.end(), outcome.shown) != others.end())
                << "allocation " << number << ": " << outcome.shown;
        }
        EXPECT_EQ(call(0).shown, expected) << "after allocation " << number;
        EXPECT_LE(LivingAllocations(), living + lost) << "after allocation " << number;
    }
    EXPECT_GT(number, 30U);
}

} // namespace qel::test
