#include "support/ClTimming.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace qel {
namespace {

std::uint32_t tick = 0;

std::uint32_t Tick() { return tick; }

TEST(ClTimming, MeasuresSecondsOfMillisecondTicks) {
    ClTimming timing(Tick);
    tick = 0xFFFFFFFFU;
    timing.Finish();
    EXPECT_EQ(timing.ElapsedTime(), 4294967.295) << "the tick itself, without a start";
    tick = 1500;
    timing.Start();
    EXPECT_EQ(timing.ElapsedTime(), 0) << "a start forgets the last measurement";
    tick = 3000;
    timing.Finish();
    EXPECT_EQ(timing.ElapsedTime(), 1.5);
    timing.Start();
    tick = 2;
    EXPECT_EQ(test::ErrorOf([&] { timing.Finish(); }), ErrorNumber::Overflow) << "the count wrapped around";
    EXPECT_EQ(timing.ElapsedTime(), 0);
}

TEST(ClTimming, TheSystemsTickCountsMilliseconds) {
    ClTimming timing;
    timing.Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    timing.Finish();
    EXPECT_GE(timing.ElapsedTime(), 0.029);
    EXPECT_LT(timing.ElapsedTime(), 20);
}

} // namespace
} // namespace qel
