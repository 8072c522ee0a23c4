#include "platform/data/xmla/CellsetAnswer.h"
#include "platform/data/xmla/RowsetAnswer.h"
#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

std::string Repeated(std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

template <class Answer>
std::string FaultOf(const std::string& document) {
    Answer answer{AnswerBudget(std::size_t{4} << 20U)};
    try {
        XmlStream xml(answer, {});
        xml.Read(document);
        xml.Finish();
        if constexpr (std::is_same_v<Answer, RowsetAnswer>) {
            static_cast<void>(answer.TakeRowset());
        }
    } catch (const AutomationError& error) {
        return error.Description();
    }
    return "";
}

TEST(AnswerLimits, ShortAnswersDoNotBecomeLarge) {
    std::string wideRow = "<row>";
    for (int i = 0; i < 2'000; ++i) {
        wideRow.append("<f").append(std::to_string(i)).append("/>");
    }
    wideRow += "</row>";
    const std::string lastField = "<row><f1999/></row>";
    EXPECT_EQ(FaultOf<RowsetAnswer>("<r>" + wideRow + "<row/></r>"), "");
    for (const auto& rows : {Repeated(5'000, "<row/>"), Repeated(5'000, lastField)}) {
        EXPECT_THAT(FaultOf<RowsetAnswer>(fmt::format("<r>{}{}</r>", wideRow, rows)),
                    testing::HasSubstr("AnswerMegabytes"));
    }

    std::string cells;
    for (int i = 0; i < 40'000; ++i) {
        cells.append("<Cell CellOrdinal=\"").append(std::to_string(i)).append("\"/>");
    }
    const auto axes = [](const std::string& tuples) {
        return "<r><Axes><Axis name=\"Axis0\">" + tuples + "</Axis></Axes></r>";
    };
    EXPECT_EQ(FaultOf<CellsetAnswer>(axes(Repeated(1'000, "<Tuple><Member/></Tuple>"))), "");
    for (const auto& document :
         {axes(Repeated(200'000, "<Tuple/>")), axes("<Tuple>" + Repeated(40'000, "<Member/>") + "</Tuple>"),
          "<r>" + cells + "</r>"}) {
        EXPECT_THAT(FaultOf<CellsetAnswer>(document), testing::HasSubstr("AnswerMegabytes"));
    }
}

TEST(AnswerLimits, ATagWithoutEndIsNotReadAgainAndAgain) {
    EXPECT_THAT(FaultOf<RowsetAnswer>("<r a=\"" + std::string(std::size_t{8} << 20U, 'x')),
                testing::HasSubstr("tag in the server's answer is too long"));
}

TEST(ShownMessage, IsShortAndHarmless) {
    const struct {
        std::string text, shown;
    } cases[] = {{"The café הוצאות is closed", "The café הוצאות is closed"},
                 {"a\x1B[31m\r\nb\x7F\xC2\x9B"
                  "c",
                  "a [31m  b  c"},
                 {"x\xE2\x80\xAEgpj\xE2\x81\xA6.exe", "xgpj.exe"},
                 {"cut \xE2\x80", "cut \uFFFD"},
                 {"direction marks of Hebrew \u200Eא\u200F", "direction marks of Hebrew \u200Eא\u200F"},
                 {std::string(999, 'x') + "é", std::string(999, 'x') + "…"},
                 {std::string(5'000, 'x'), std::string(1'000, 'x') + "…"}};
    for (const auto& c : cases) {
        EXPECT_EQ(ShownMessage(c.text), c.shown);
    }
}

} // namespace
} // namespace qel
