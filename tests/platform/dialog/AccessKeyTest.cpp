#include "platform/dialog/AccessKey.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

TEST(AccessKey, IsTheFirstOfTheLettersThatTheCaptionHolds) {
    const struct {
        const char *caption, *letters, *shown;
    } cases[] = {
        {"Cube Name", "Nש", "Cube &Name"},
        {"שם קוביה", "Nש", "&שם קוביה"},
        {"Select OBS", "E", "S&elect OBS"},
        {"Profit & Loss", "L", "Profit && &Loss"},
        {"R&D", "D", "R&&&D"},
        {"מדד", "Mק", "מדד"},
        {"OK", "", "OK"},
        {"", "A", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WithAccessKey(c.caption, c.letters, "&"), c.shown) << c.caption;
    }
}

} // namespace
} // namespace qel
