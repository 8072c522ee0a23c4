#include "function/ArgumentText.h"
#include "function/DetailTable.h"
#include "function/SheetWriter.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/doubles/SheetDouble.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <gmock/gmock.h>

#include <functional>

namespace qel {
namespace {

using test::RecordedMessages;
using test::SheetDouble;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string noBreakSpace = "\xC2\xA0";

FormulaArgs PlainArguments() {
    FormulaArgs arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        arguments[i] = "a" + std::to_string(i);
    }
    return arguments;
}

std::string TextOf(FormulaArgs arguments) { return ComposeArgumentText(arguments, Locale()); }

const struct {
    const char* what;
    std::function<void(FormulaArgs&)> set;
    const char* start; ///< of the text
} argumentTextCases[] = {
    {"texts alone", [](FormulaArgs&) {},
     R"("a0", "a1", "a2", "a3", "a4", "a5", "a6", "a7", "a8", "a9", "a10", "a11", "a12", "a13", "a14", "a15", "a16", "a17")"},
    {"lists of one key, of none and of two",
     [](FormulaArgs& a) {
         a[2] = Variant::List({"OBS"});
         a[3] = Variant::List({"1"});
         a[4] = Variant::List({Empty{}});
         a[5] = Variant::List({"Dept 10", "Dept 20"});
         a[6] = Variant::List({"Sales"});
     },
     R"("a0", "a1", {"OBS"},{"1"},"", {"Dept 10", "Dept 20"},{"Sales"},"a7", )"},
    {"a list of one empty text is not an empty list", [](FormulaArgs& a) { a[2] = Variant::List({""}); },
     R"("a0", "a1", {""},"a3")"},
    {"a quote in a list of one key, and none elsewhere",
     [](FormulaArgs& a) {
         a[1] = R"(q"1)";
         a[2] = Variant::List({R"(q"2"")"});
         a[3] = Variant::List({R"(q"3)", R"("q)"});
     },
     "\"a0\", \"q\"1\", {\"q\xC2\xA0"
     "2\xC2\xA0\xC2\xA0\"},{\"q\"3\", \"\"q\"},\"a4\""},
    {"numbers and nothing as texts",
     [](FormulaArgs& a) {
         a[0] = 1.5;
         a[1] = Empty{};
         a[2] = Variant::List({std::int32_t{7}, std::int32_t{8}});
     },
     R"("1.5", "", {"7", "8"},"a3")"},
};

TEST(ArgumentText, QuotesTextsAndBracesLists) {
    for (const auto& c : argumentTextCases) {
        FormulaArgs arguments = PlainArguments();
        c.set(arguments);
        EXPECT_THAT(TextOf(arguments), ::testing::StartsWith(c.start)) << c.what;
        EXPECT_THAT(TextOf(arguments), ::testing::EndsWith(R"("a16", "a17")")) << c.what;
    }
}

TEST(ArgumentText, LeavesTheReplacedKeyInTheArguments) {
    FormulaArgs arguments = PlainArguments();
    arguments[5] = Variant::List({R"(a"b)"});
    ComposeArgumentText(arguments, Locale());
    EXPECT_EQ(arguments[5].As<std::shared_ptr<const VariantArray>>()->elements.front().As<std::string>(),
              "a" + noBreakSpace + "b");
}

TEST(ArgumentText, OfANameFormulaIsFourTexts) {
    EXPECT_EQ(ComposeNameArgumentText({"a.cub", "Fin", "SuperSum1", "4"}),
              R"("a.cub", "Fin", "SuperSum1", "4")");
}

/// The rows of a table: "label=value".
std::vector<std::string> RowsOf(const VariantArray& table) {
    const auto rows = static_cast<std::size_t>(table.bounds[0].upper) + 1;
    const auto text = [&](std::size_t i) {
        const Variant& cell = table.elements.at(i);
        return cell.Is<Empty>() ? std::string("(empty)") : cell.As<std::string>();
    };
    std::vector<std::string> lines;
    lines.reserve(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        lines.push_back(text(i) + "=" + text(rows + i));
    }
    return lines;
}

FormulaArgs WizardArguments() {
    FormulaArgs arguments = PlainArguments();
    arguments[1] = "{a1}"; // parts around the lists keep their braces
    arguments[7] = "{a7}";
    for (std::size_t i = 2; i <= 6; ++i) {
        arguments[i] = Variant::List({"{k" + std::to_string(i) + "}"});
    }
    return arguments;
}

TEST(DetailTable, HasALabelForEveryArgument) {
    EXPECT_THAT(RowsOf(*ComposeDetailTable(TextOf(WizardArguments()), 0)),
                ElementsAre("Cube=a0", "Cube Name= {a1}", "OBS= k2", "OBS Number=k3", "OBS Level=k4",
                            "OBS Member=k5", "Activity=k6", "Summary Group={a7}", "Account Level=a8",
                            "Accounts=a9", "Measure=a10", "Money Set=a11", "Plbs=a12", "RH=a13", "Firma=a14",
                            "Opening Balance=a15", "From Date= a16", "To Date= a17", "(empty)=(empty)"))
        << "dates keep their leading blank";
    EXPECT_THAT(RowsOf(*ComposeDetailTable(TextOf(WizardArguments()), 1)),
                ElementsAre("קוביה=a0", "שם קוביה= {a1}", "OBS= k2", "OBS Number=k3", "OBS Level=k4",
                            "OBS Member=k5", "פעילויות=k6", "סעיף מרמה={a7}", "סעיפים=a8", "חשבונות=a9",
                            "Measure=a10", "סידרת כסף=a11", "פ/ת/ה/תכ=a12", "RH=a13", "פירמה=a14",
                            "יתרת פתיחה=a15", "מתאריך= a16", "עד תאריך= a17", "(empty)=(empty)"));
    EXPECT_EQ(RowsOf(*ComposeDetailTable(TextOf(WizardArguments()), 2)),
              RowsOf(*ComposeDetailTable(TextOf(WizardArguments()), 0)))
        << "only language 1 is Hebrew";
}

TEST(DetailTable, SpreadsSeveralKeysOverRowsOfOtherLabels) {
    FormulaArgs arguments = PlainArguments();
    arguments[5] = Variant::List({"North, old", "South"});
    const auto rows = RowsOf(*ComposeDetailTable(TextOf(arguments), 0));
    ASSERT_EQ(rows.size(), 21U);
    EXPECT_EQ(rows[5], "OBS Member= North");
    EXPECT_EQ(rows[6], "Activity= old");
    EXPECT_EQ(rows[7], "Summary Group=South}") << "its part is not among those that lose their braces";
    EXPECT_EQ(rows[19], "(empty)= a17");
    EXPECT_EQ(rows[20], "(empty)=(empty)");
}

class SheetWriterTest : public ::testing::Test {
protected:
    void WriteTable(std::int16_t iLang, SheetDouble::Place passed = {3, 2}) {
        sheet_.log.clear();
        messages_.shown.clear();
        WriteDetailTable(*sheet_.Cell(passed), TextOf(PlainArguments()), iLang, messages_);
    }

    SheetDouble sheet_;
    RecordedMessages messages_;
};

TEST_F(SheetWriterTest, PutsAFormulaIntoTheActiveCell) {
    sheet_.cells[{3, 2}] = "something";
    WriteFormula(*sheet_.Cell({9, 9})->Application(), "QelF1", R"("a", {"b"},"c")");
    EXPECT_THAT(sheet_.log,
                ElementsAre(R"(formula R3C2 =OrmFunctionQel4.OrmQelFunction.QelF1("a", {"b"},"c"))"));
}

TEST_F(SheetWriterTest, PutsATableAtTheActiveCellItsFirstSixteenRowsAsTexts) {
    WriteTable(0);
    EXPECT_THAT(messages_.shown, IsEmpty());
    EXPECT_THAT(sheet_.log, ElementsAre("format R3C2:R18C3 @", "formula R3C2:R21C3"));
    EXPECT_EQ((sheet_.cells[{3, 2}].As<std::string>()), "Cube");
    EXPECT_EQ((sheet_.cells[{20, 3}].As<std::string>()), " a17");
}

TEST_F(SheetWriterTest, AsksForEveryCellThatIsNotEmpty) {
    const std::string hebrew = " קיימים נתונים \r\n\r\n תא : ", continueHebrew = "\r\n\r\nלהמשיך ? ",
                      english = " There is data in \r\n\r\ncell : ", continueEnglish = "\r\n\r\nContinue ? ";
    const struct {
        const char* what;
        std::int16_t iLang;
        SheetDouble::Place filled;
        std::string question;
    } cases[] = {
        {"the first cell, in Hebrew", 1, {3, 2}, hebrew + "2,3" + continueHebrew},
        {"language 0 asks in Hebrew, too", 0, {3, 2}, hebrew + "2,3" + continueHebrew},
        {"the row's offset goes with the column", 1, {7, 3}, hebrew + "6,4" + continueHebrew},
        {"in English it goes from the cell passed", 2, {7, 3}, english + "54,41" + continueEnglish},
        {"the last row that is looked at", 2, {20, 2}, english + "67,40" + continueEnglish},
        {"the row to spare is overwritten unasked", 2, {21, 2}, ""},
        {"beside the table", 2, {3, 4}, ""},
    };
    for (const auto& c : cases) {
        sheet_.cells = {{c.filled, Variant("x")}};
        messages_.answers = {MessageBoxAnswer::No};
        WriteTable(c.iLang, {40, 50});
        EXPECT_EQ(sheet_.log.size(), c.question.empty() ? 2U : 0U) << c.what;
        ASSERT_EQ(messages_.shown.size(), c.question.empty() ? 0U : 1U) << c.what;
        if (!c.question.empty()) {
            EXPECT_EQ(messages_.shown[0], (test::ShownMessage{20, "", c.question})) << c.what;
        }
    }
}

TEST_F(SheetWriterTest, StopsAtTheFirstAnswerThatIsNotYes) {
    sheet_.cells = {
        {{4, 2}, Variant("")}, {{5, 3}, Variant(0.0)}, {{3, 3}, Variant("x")}, {{9, 3}, Variant("x")}};
    messages_.answers = {MessageBoxAnswer::Yes, MessageBoxAnswer::Yes, MessageBoxAnswer::Cancel};
    WriteTable(2);
    ASSERT_EQ(messages_.shown.size(), 3U) << "an empty text is no empty cell";
    EXPECT_THAT(messages_.shown[1].text, ::testing::HasSubstr("cell : 2,4")) << "first column first";
    EXPECT_THAT(sheet_.log, IsEmpty());
    messages_.answers.assign(4, MessageBoxAnswer::Yes);
    WriteTable(2);
    EXPECT_EQ(messages_.shown.size(), 4U);
    EXPECT_EQ(sheet_.log.size(), 2U);
}

} // namespace
} // namespace qel
