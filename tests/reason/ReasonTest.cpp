#include "reason/Reason.h"

#include "lang/StringTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace qel {
namespace {

TEST(Reason, IsToldInBothLanguages) {
    const Reason missing{ReasonCode::NoMember, {"[OBS].[Level2]", "Nort"}, "ObsMember", {{"North"}, true, 0}};
    EXPECT_EQ(ReasonText(missing),
              R"(ObsMember: [OBS].[Level2] has no member "Nort"; did you mean "North"?)");
    EXPECT_EQ(ReasonText(missing, Language::Hebrew),
              R"(ObsMember: אין ב-[OBS].[Level2] איבר "Nort"; האם הכוונה ל-"North"?)");
    const Reason before{ReasonCode::DatesBefore, {AutomationDate{45383}}, "", {{"1", "2"}, false, 3}};
    EXPECT_EQ(ReasonText(before, Language::Hebrew),
              R"(התאריכים מסתיימים לפני תחילת התקופה הראשונה בקוביה, 1 באפריל 2024; יש בו "1", "2" ועוד 3)");
}

std::set<std::string> FieldsOf(const std::string& text) {
    std::set<std::string> fields;
    for (auto at = text.find('{'); at != std::string::npos; at = text.find('{', at + 1)) {
        fields.insert(text.substr(at, 2));
    }
    return fields;
}

TEST(Reason, HasTheSameFieldsInBothLanguages) {
    for (auto code = static_cast<int>(ReasonCode::DidYouMean); code <= static_cast<int>(ReasonCode::NoFile);
         ++code) {
        EXPECT_EQ(FieldsOf(ResourceString(code, Language::English)),
                  FieldsOf(ResourceString(code, Language::Hebrew)))
            << code;
    }
}

} // namespace
} // namespace qel
