#include "lang/LangCheck.h"

#include "lang/StringTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(CheckLangRows, FindsWhatEachLanguageLacks) {
    std::vector<LangRow> rows;
    for (const auto& entry : StringTable()) {
        if (entry.number != 1366) {
            rows.push_back({Language::Hebrew, entry.number, entry.number == 1480 ? "" : "x"});
        }
    }
    const auto complete = rows.size();
    rows.insert(rows.end(), {{1, 1473, "again"}, {1, 1000, "the suite's"}, {7, 20, "David"}});
    const auto findings = CheckLangRows(rows);
    ASSERT_EQ(findings.size(), 3U);

    const auto& hebrew = findings.at(Language::Hebrew);
    EXPECT_EQ(hebrew.rows, complete + 2);
    EXPECT_THAT(hebrew.missing, ElementsAre(1366));
    EXPECT_THAT(hebrew.empty, ElementsAre(1480));
    EXPECT_THAT(hebrew.duplicate, ElementsAre(1473));
    EXPECT_THAT(hebrew.unknown, ElementsAre(1000));
    EXPECT_EQ(findings.at(Language::English).missing.size(), StringTable().size())
        << "not in the table at all";
    EXPECT_EQ(findings.at(7).missing.size(), StringTable().size() - 1);
    EXPECT_THAT(findings.at(7).duplicate, IsEmpty());
}

} // namespace
} // namespace qel
