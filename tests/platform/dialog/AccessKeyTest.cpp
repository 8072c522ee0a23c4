#include "platform/dialog/AccessKey.h"

#include "platform/dialog/ReadingOrder.h"

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

TEST(ReadingOrder, IsThatOfTheFirstLetter) {
    const std::string left = "\u202A", right = "\u202B", end = "\u202C";
    const std::pair<std::string, std::string> texts[] = {
        {"3 - Equity", left + "3 - Equity" + end},
        {"1410 - עפולה \"ביג\"", right + "1410 - עפולה \"ביג\"" + end},
        {"OBS נתוני", left + "OBS נתוני" + end},
        {"12", left + "12" + end},
        {"", ""},
    };
    for (const auto& [text, marked] : texts) {
        EXPECT_EQ(InOwnDirection(text), marked);
        EXPECT_EQ(LineInOwnDirection(text) + (text.empty() ? "" : end), marked);
        EXPECT_EQ(WithoutDirection(marked), text);
    }
    EXPECT_EQ(LinesInOwnDirection("להמשיך ?\n\nC:\\a.cub"),
              right + "להמשיך ?" + end + "\n\n" + right + "C:\\a.cub" + end);
    EXPECT_EQ(LinesInOwnDirection("Error : 75\nהתיקייה"), "Error : 75\nהתיקייה");
}

} // namespace
} // namespace qel
