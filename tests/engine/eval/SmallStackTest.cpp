#include "tests/helpers/SmallStack.h"

#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <pthread.h>

// Long statements, and statements as deep as they may be, on the stack of a small thread.

namespace qel::engine {
namespace {

constexpr int manyTerms = 60'000;

/// The answer in lines, or how many positions it has, or the error without its place.
std::string Answer(const Cube& cube, const std::string& statement) {
    std::string answer;
    test::RunOnSmallStack([&] {
        try {
            const Cellset cellset = RunStatement(cube, statement);
            const std::size_t positions = cellset.AxisCount() == 0 ? 0 : cellset.PositionCount(0);
            answer = positions > 10 ? fmt::format("{} positions", positions) : Show(cellset);
        } catch (const EngineError& error) {
            answer = error.what();
            answer = answer.substr(0, answer.find(", near \""));
            answer = answer.substr(answer.starts_with("line ") ? answer.find(": ") + 2 : 0);
        }
    });
    return answer;
}

/// `first`, then `next` again and again.
std::string Chain(const std::string& first, const std::string& next, int count = manyTerms) {
    std::string text = first;
    for (int i = 1; i < count; ++i) {
        text += next;
    }
    return text;
}

/// `inner` inside `before` and `after`, again and again.
std::string Nested(const std::string& before, const std::string& inner, const std::string& after, int count) {
    return Chain("", before, count + 1) + inner + Chain("", after, count + 1);
}

std::string OfSet(const std::string& set) { return "SELECT " + set + " ON 0 FROM Finance"; }
std::string OfNumber(const std::string& formula) {
    return "WITH MEMBER [Measures].[x] AS " + formula + " SELECT FROM Finance WHERE [Measures].[x]";
}

class SmallStack : public testing::Test {
protected:
    std::shared_ptr<const Cube> cube_ =
        BuildLedgerCube({{"2024-01", "4000", "n1", "A", "100", "7", "1", 100},
                         {"2024-03", "5000", "s2", "C", "300", "8", "2", 50}});
};

TEST_F(SmallStack, TakesLongStatements) {
    const std::string both = "[Firma].[All].[1] | [Firma].[All].[2]";
    const std::string tooDeep = "more than 100 expressions stand inside one another";
    const struct {
        const char* what;
        std::string statement, answer;
    } cases[] = {
        {"unions", OfSet(Chain("{[Firma].[1]}", " + {[Firma].[2], [Firma].[1]}")), both + "\n1 | 0.5"},
        {"differences", OfSet(Chain("[Firma].Members", " - {[Firma]}")), both + "\n1 | 0.5"},
        {"both in turn, so that what comes is taken away again",
         OfSet(Chain("[Firma].Children", " + {[Firma]} - {[Firma]}")), both + "\n1 | 0.5"},
        {"cross joins of nothing", OfSet(Chain("{}", " * {}")), "\n"},
        {"a cross join of one hierarchy", OfSet(Chain("[Firma].Children", " * [Firma].Children")),
         "the hierarchy [Firma] stands on both sides of the cross join"},
        {"a tuple of sets", OfSet("(" + Chain("{}", ", {}") + ")"), "\n"},
        {"a function of many sets", OfSet("Union(" + Chain("{[Firma].[1]}", ", {[Firma].[2]}") + ")"),
         both + "\n1 | 0.5"},
        {"with duplicates", OfSet("Union(" + Chain("{[Firma].[1]}", ", {[Firma].[2]}") + ", ALL)"),
         "60000 positions"},
        {"a cross join as a function", OfSet("CrossJoin(" + Chain("{}", ", {}") + ")"), "\n"},
        {"braces", OfSet("{" + Chain("[Firma].[1]", ", [Firma].[2]") + "}"), "60000 positions"},
        {"ranges", OfSet("{" + Chain("[Firma].[1]", ", [Firma].[1] : [Firma].[1]") + "}"), "60000 positions"},
        {"a tuple", OfNumber("(" + Chain("[Firma].[1]", ", [Firma].[2]") + ")"),
         "the hierarchy [Firma] stands in the tuple twice"},
        {"a path", OfSet(Chain("[Firma]", ".[1]")), "[Firma].[1] has no member [1]"},
        {"methods", OfSet(Chain("[Firma]", ".FirstChild")), tooDeep},
        {"items", OfSet(Chain("([Firma].Members * [OBS].Members)", ".Item(0)")), tooDeep},
        {"sums", OfNumber(Chain("1", " + 1")), "60000"},
        {"products", OfNumber(Chain("1", " * 1 / 1")), "~1"},
        {"conditions", OfNumber("IIf(" + Chain("1 = 2", " OR 1 = 2 AND 1 = 1 XOR 1 = 2") + ", 1, 2)"), "2"},
        {"comparisons", OfNumber("IIf(" + Chain("1", " = 1") + ", 1, 2)"),
         "expected AND, OR or the end of the comparison, found '='"},
        {"texts", OfNumber("Len(" + Chain("\"a\"", " || \"b\"") + ")"), "60000"},
        {"a choice of many", OfNumber("CASE " + Chain("", "WHEN 1 = 2 THEN 1 ") + "ELSE 2 END"), "2"},
        {"values of a choice", OfNumber("CASE 3 " + Chain("", "WHEN 1 THEN 1 ") + "WHEN 3 THEN 4 END"), "4"},
        {"keys of an order", OfSet("Order({[Firma].[1]}" + Chain("", ", 1") + ")"), "[Firma].[All].[1]\n1"},
        {"arguments", OfNumber("CoalesceEmpty(" + Chain("NULL", ", NULL") + ", 3)"), "3"},
        {"NOT", OfNumber("IIf(" + Chain("", "NOT ") + "1 = 1, 1, 2)"), tooDeep},
        {"signs", OfNumber(Chain("", "- ") + "1"), tooDeep},
        {"signs that do nothing", OfNumber(Chain("", "+ ") + "1"), tooDeep},
        {"parentheses", OfNumber(Nested("(", "1", ")", manyTerms)), tooDeep},
        {"sets in sets", OfSet(Nested("{", "[Firma]", "}", manyTerms)), tooDeep},
        {"cases", OfNumber(Nested("IIf(1 = 2, 1, ", "2", ")", manyTerms)), tooDeep},
        {"a name of brackets", OfSet("[Firma].[" + Chain("", "]]") + "]"),
         "[Firma] has no member [" + Chain("", "]]") + "]"},
        {"comments", Chain("", "/* a */ -- b\n") + "SELECT FROM Finance", "1.5"},
        {"properties", Chain("SELECT {[Firma]} DIMENSION PROPERTIES a", ", a") + " ON 0 FROM Finance",
         "[Firma].[All]\n1.5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Answer(*cube_, c.statement), c.answer) << c.what;
    }
}

TEST_F(SmallStack, TakesLongChainsOfDefinitions) {
    constexpr int count = 10'000;
    std::string forth;
    std::string back;
    std::string sets = "SET s0 AS {[Firma].[1]} ";
    std::string needed = "SET s0 AS Filter([Firma].Children, [Measures].[Amount] > 0.5) ";
    for (int i = 0; i < count; ++i) {
        forth += fmt::format("MEMBER [Measures].m{} AS [Measures].m{} ", i, i + 1);
        back += fmt::format("MEMBER [Measures].m{} AS [Measures].m{} + 1 ", count - i, count - i - 1);
        sets += fmt::format("SET s{} AS Union(s{}, s0) ", i + 1, i);
        needed += fmt::format("SET s{} AS Head(s{}, 1) ", i + 1, i);
    }
    const std::string tooLong = "the calculated member needs itself, or more than 400 expressions inside one "
                                "another, to be evaluated";
    const struct {
        const char* what;
        std::string statement, answer;
    } cases[] = {
        {"members that need later ones",
         fmt::format("WITH {}MEMBER [Measures].m{} AS 5 SELECT FROM Finance WHERE [Measures].m0", forth,
                     count),
         tooLong},
        {"the last of which need few others",
         fmt::format("WITH {}MEMBER [Measures].m{} AS 5 SELECT FROM Finance WHERE [Measures].m{}", forth,
                     count, count - 100),
         "5"},
        {"members that need earlier ones",
         fmt::format("WITH MEMBER [Measures].m0 AS 5 {}SELECT FROM Finance WHERE [Measures].m{}", back,
                     count),
         tooLong},
        {"sets", fmt::format("WITH {}SELECT s{} ON 0 FROM Finance", sets, count), "[Firma].[All].[1]\n1"},
        {"sets that a formula needs",
         fmt::format("WITH {}MEMBER [Measures].[x] AS Count(s{}) SELECT FROM Finance WHERE [Measures].[x]",
                     needed, count),
         "1"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Answer(*cube_, c.statement), c.answer) << c.what;
    }
}

/// As deep as a statement may be: every kind of call and operator inside itself, alone and in formulas that
/// need one another.
TEST_F(SmallStack, TakesDeepStatements) {
    const struct {
        const char *before, *inner, *after;
        int steps; ///< expressions inside one another that one turn makes
    } numbers[] = {
        {"(", "1", ")", 1},
        {"1*(1+(", "1", "))", 2},
        {"-(- ", "1", ")", 3},
        {"IIf(1 = 2, 1, ", "2", ")", 1},
        {"IIf(1 = 1 AND ", "1", ", 1, 2)", 1},
        {"IIf(NOT NOT 1 = 1 AND 1 = ", "1", ", 1, 2)", 1},
        {"Abs(1 + 2 * ", "3", ")", 1},
        {"CoalesceEmpty(NULL, ", "3", ")", 1},
        {"Sum({[Firma].[1]}, ", "3", ")", 1},
        {"Aggregate({[Firma].[1], [Firma].[2]} * {[OBS].[North], [OBS].[All]}, ", "3", ")", 1},
        {"Max([Firma].[1], 1 + ", "3", ")", 1},
        {"Count(Filter({[Firma].[1]}, 0 < ", "1", "))", 2},
        {"Count(Order({[Firma].[1]} * {[OBS]}, ", "1", ", BASC))", 2},
        {"Count(TopCount({[Firma].[1]}, 1, ", "1", "))", 2},
        {"Count(Descendants([OBS], 0 + ", "1", "))", 2},
        {"Count(LastPeriods(", "1", ", [Date].[2024]))", 2},
        {"([Firma].Children * [OBS].Children).Item(", "0", ").Value", 3},
        {"CASE WHEN 1 = 2 THEN 1 ELSE ", "3", " END", 2},
        {"CASE ", "3", " WHEN 3 THEN 1 END", 2},
        {"Len(Left(\"abc\" || Mid(\"abc\", 1, ", "1", "), 2))", 3},
        {"Len(Format(", "1", ", \"0.00\"))", 2},
        {"Rank([Firma].[1], {}, ", "1", ")", 1},
        {"Median({[Firma].[1]}, ", "1", ")", 1},
        {"Count(TopPercent({[Firma].[1]}, 50, ", "1", "))", 2},
        {"Len(Generate({[Firma].[1]}, Left(\"a\", ", "1", ")))", 3},
    };
    constexpr int mostSteps = 97;
    for (const auto& nest : numbers) {
        const std::string deep = Nested(nest.before, nest.inner, nest.after, mostSteps / nest.steps);
        const std::string answer = Answer(*cube_, OfNumber(deep));
        EXPECT_LT(answer.size(), 30U) << "no number: " << answer << "\n" << deep;
        std::string formulas;
        for (int i = 0; i < 400; ++i) {
            formulas += fmt::format("MEMBER [Measures].m{} AS {} ", i,
                                    Nested(nest.before, fmt::format("[Measures].m{}", i + 1), nest.after,
                                           i % 3 == 0 ? 30 / nest.steps : 1));
        }
        EXPECT_EQ(Answer(*cube_, "WITH " + formulas +
                                     "MEMBER [Measures].m400 AS 1 SELECT FROM Finance WHERE [Measures].m0"),
                  "the calculated member needs itself, or more than 400 expressions inside one another, to "
                  "be evaluated")
            << nest.before;
    }
    EXPECT_EQ(Answer(*cube_,
                     OfNumber(Nested("Count(Filter([Firma].Members, 0 < ", "[Measures].[Amount]", "))", 48))),
              "more than 1000000 cells are read for sets inside one another");
    const struct {
        const char *before, *inner, *after;
        int steps;
    } sets[] = {
        {"{", "[Firma]", "}", 1},
        {"Head(", "[Firma]", ")", 1},
        {"Union({[Firma].[1]}, ", "{[Firma]}", ")", 1},
        {"{[Firma].[1]} + (", "{[Firma]}", ")", 1},
        {"Hierarchize(", "{[Firma]}", ")", 1},
        {"Generate({[Firma].[1]}, ", "{[Firma]}", ")", 1},
        {"Exists({[Firma]}, ", "{[Firma]}", ")", 1},
        {"NonEmpty(", "{[Firma]}", ", [OBS])", 1},
        {"DrilldownMember(", "{[Firma]}", ", {[Firma]})", 1},
        {"DrilldownLevel(", "{[Firma]}", ")", 1},
        {"Extract(", "{[Firma]}", " * {[OBS]}, [Firma])", 2},
        {"IIf(1 = 1, ", "{[Firma]}", ", {})", 1},
        {"Filter(", "{[Firma]}", ", 1 = 1)", 1},
        {"Order(", "{[Firma]}", ", 1)", 1},
        {"Order(", "{[Firma]}", ", [Firma].CurrentMember.Name)", 1},
        {"{{", "[Firma].[1] : [Firma].[2]", "}.Item(0)}", 3},
        {"{", "{[Firma].[1]} * {[OBS]}", "}.Item(0)", 2},
    };
    for (const auto& nest : sets) {
        const std::string deep = Nested(nest.before, nest.inner, nest.after, mostSteps / nest.steps);
        const std::string answer = Answer(*cube_, OfSet(deep));
        EXPECT_EQ(answer.find("[Firma]"), 0U) << "no set: " << answer << "\n" << deep;
    }
}

} // namespace
} // namespace qel::engine
