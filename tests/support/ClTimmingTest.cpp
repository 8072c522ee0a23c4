#include "support/ClTimming.h"

#include "platform/value/AutomationError.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace qel {
namespace {

template <std::uint32_t tick>
std::uint32_t At() {
    return tick;
}

std::uint32_t NextTick() {
    static std::uint32_t tick = 0;
    return tick += 1500;
}

std::uint32_t TickAcrossTheWrap() {
    static bool wrapped = false;
    wrapped = !wrapped;
    return wrapped ? 0xFFFFFFFFU : 2U;
}

TEST(ClTimming, MeasuresSecondsOfMillisecondTicks) {
    ClTimming timing(NextTick);
    timing.Start();
    EXPECT_EQ(timing.ElapsedTime(), 0);
    timing.Finish();
    EXPECT_EQ(timing.ElapsedTime(), 1.5);
    timing.Start();
    EXPECT_EQ(timing.ElapsedTime(), 0) << "a new start forgets the last measurement";
}

TEST(ClTimming, FinishWithoutStartGivesTheTickItself) {
    ClTimming timing(At<0xFFFFFFFFU>);
    timing.Finish();
    EXPECT_EQ(timing.ElapsedTime(), 4294967.295);
}

TEST(ClTimming, ATickThatStartedAgainIsAnOverflow) {
    ClTimming timing(TickAcrossTheWrap);
    timing.Start();
    try {
        timing.Finish();
        FAIL() << "no error";
    } catch (const AutomationError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::Overflow);
    }
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
