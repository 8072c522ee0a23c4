#include "function/formula/ParseFormula.h"

#include "function/formula/FormulaError.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

/// A value with its automation type, so that 1 and "1" differ.
std::string Shown(const Variant& value) {
    if (value.IsArray()) {
        std::string text;
        for (const auto& element : value.As<std::shared_ptr<const VariantArray>>()->elements) {
            text += fmt::format("{}{}", text.empty() ? "" : " ", Shown(element));
        }
        return fmt::format("{{{}}}", text);
    }
    if (value.Is<std::string>()) {
        return fmt::format("<{}>", value.As<std::string>());
    }
    if (value.Is<double>()) {
        return fmt::format("{:.15g}", value.As<double>());
    }
    if (value.Is<bool>()) {
        return value.As<bool>() ? "TRUE" : "FALSE";
    }
    return value.TypeName();
}

std::string Shown(const Formula& formula) {
    std::string text = formula.function + ":";
    for (const auto& argument : formula.arguments) {
        text += fmt::format(" {}", argument.value ? Shown(*argument.value) : "omitted");
    }
    return text;
}

TEST(ParseFormula, ReadsWhatStandsInACell) {
    const struct {
        const char *what, *text, *expected;
    } cases[] = {
        {"the full name in its usual form", "=OrmFunctionQel4.OrmQelFunction.QelF1(\"a.cub\", \"Fin\")",
         "QelF1: <a.cub> <Fin>"},
        {"any letter case, no equals sign", "ormfunctionQEL4.ORMQELFUNCTION.qelname(1)", "qelname: 1"},
        {"bare name, blanks everywhere", "  = \t QelF1 ( \"a\" , 2 ) ", "QelF1: <a> 2"},
        {"no-break blanks and marks of direction between tokens",
         "=QelF1(\u00A0\"a\"\u00A0,\u200F\"ב\"\u200E\u202F)\uFEFF", "QelF1: <a> <ב>"},
        {"no-break blanks inside a text stay", "=QelF1(\" a\u00A0\")", "QelF1: < a\u00A0>"},
        {"doubled quotes", R"(=QelF1("say ""hi""","""",""))", "QelF1: <say \"hi\"> <\"> <>"},
        {"names with ] & ' } ) , in a text", R"(=QelF1("a]&'},);{"))", "QelF1: <a]&'},);{>"},
        {"Hebrew", R"(=QelF1("שכר ""דירה""", {"הנהלה"}))", "QelF1: <שכר \"דירה\"> {<הנהלה>}"},
        {"numbers", "=F(12,-3,+.5,1.50,2E3,-1.5e-2,- 7)", "F: 12 -3 0.5 1.5 2000 -0.015 -7"},
        {"booleans", "=F(TRUE,false)", "F: TRUE FALSE"},
        {"no arguments", "=F()", "F:"},
        {"omitted arguments, trailing ones too", "=F(,1,,)", "F: omitted 1 omitted omitted"},
        {"array constants by each separator", R"(=F({"a","b"},{1;2},{TRUE\"c"},{-1}))",
         "F: {<a> <b>} {1 2} {TRUE <c>} {-1}"},
        {"blanks in an array constant, none after it", R"(=F({ "a" , "b" },{"c"},1))",
         "F: {<a> <b>} {<c>} 1"},
        {"semicolons between arguments, commas in arrays", R"(=F("a";{"b","c"};;DATE(2024;1;2)))",
         "F: <a> {<b> <c>} omitted 45293"},
        {"DATE is a number of days", "=F(DATE(2024,3,31), date( 1900 , 3 , 1 ))", "F: 45382 61"},
        {"DATE runs over months and days", "=F(DATE(2024,14,1),DATE(2024,3,0),DATE(2024,0,1),DATE(24,1,1))",
         "F: 45689 45351 45261 8767"},
        {"line breaks between tokens", "=F(\r\n1,\n2)", "F: 1 2"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Shown(ParseFormula(c.text)), c.expected) << c.what;
    }
}

TEST(ParseFormula, AnArrayConstantIsAZeroBasedArrayOfVariants) {
    const auto formula = ParseFormula(R"(=F({"a",2,TRUE}))");
    const auto& value = *formula.arguments.at(0).value;
    EXPECT_EQ(value.TypeName(), "Variant()");
    const auto& array = *value.As<std::shared_ptr<const VariantArray>>();
    ASSERT_EQ(array.bounds.DimensionCount(), 1U);
    EXPECT_EQ(array.bounds[0].lower, 0);
    EXPECT_EQ(array.bounds[0].upper, 2);
}

TEST(ParseFormula, TellsWhatIsWrongAndWhere) {
    const struct {
        const char* what;
        std::string text;
        std::size_t position;
        const char* part; ///< of the message
    } cases[] = {
        {"nothing", "", 1, "empty"},
        {"an equals sign alone", "= ", 3, "empty"},
        {"a text left open", R"(=F("a","b)", 8, "no closing quote"},
        {"a parenthesis left open", R"(=F("a")", 7, "Expected ',' or ')'"},
        {"something after the end", "=F(1) x", 7, "Expected the end of the formula, found the name x"},
        {"two formulas", "=F(1)+F(2)", 6, "Expected the end of the formula, found '+'"},
        {"curly quotes", "=F(“a”)", 4, "curly quote"},
        {"curly quotes after Hebrew count characters, not bytes", "=F(\"שלום\",“a”)", 11, "curly quote"},
        {"single quotes", "=F('a')", 4, "single quote"},
        {"no function", "=1", 2, "Expected a function's name, found the number 1"},
        {"a name as an argument", "=F(A1)", 4, "found the name A1"},
        {"a nested call", "=F(SUM(1))", 4, "found the name SUM"},
        {"mixed separators", "=F(1,2;3)", 7, "separated by ',' before"},
        {"an array of rows and columns", "=F({1,2;3,4})", 8, "one kind of separator"},
        {"an empty array", "=F({})", 5, "found '}'"},
        {"an omitted element", "=F({1,,2})", 7, "found ','"},
        {"an array in an array", "=F({{1}})", 5, "found '{'"},
        {"two numbers without a separator", "=F(1 2)", 6, "found the number 2"},
        {"a number with two points", "=F(1.2.3)", 4, "'1.2.' is not a number"},
        {"a number too large", "=F(1e999)", 4, "out of range"},
        {"a month that is a text", "=F(DATE(2024,\"1\",1))", 14, "a number in DATE"},
        {"a date before the calendar", "=F(DATE(1900,-40,1))", 4, "outside the years"},
        {"a sign without a number", "=F(--1)", 5, "found '-'"},
        {"a NUL byte", std::string("=F(\0)", 5), 4, "Unexpected"},
        {"half a character", "=F(\xD7", 4, "Unexpected"},
    };
    for (const auto& c : cases) {
        try {
            ADD_FAILURE() << c.what << " was read as " << Shown(ParseFormula(c.text));
        } catch (const FormulaError& error) {
            EXPECT_EQ(error.Position(), c.position) << c.what << ": " << error.what();
            EXPECT_NE(std::string(error.what()).find(c.part), std::string::npos)
                << c.what << ": " << error.what();
        }
    }
}

} // namespace
} // namespace qel
