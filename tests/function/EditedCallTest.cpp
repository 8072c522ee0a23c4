#include "function/EditedCall.h"

#include "function/formula/WrittenCalls.h"
#include "platform/value/AutomationError.h"

#include <gtest/gtest.h>

#include <map>

// A formula that is edited: what the wizard starts with, and what is written when some of it was chosen
// again.

namespace qel::test {
namespace {

using Arguments = std::vector<std::string>;

const Arguments ledger = {R"("a.cub")",  R"("LedgerFNC")",  R"({"OBS"})",     R"({"1"})", R"({"All"})",
                          R"({"All"})",  R"({"All"})",      R"("All")",       R"("")",    R"("4000")",
                          R"("Amount")", R"("All")",        R"("All")",       R"("All")", R"("All")",
                          R"("")",       R"("01/01/2024")", R"("31/12/2024")"};

/// The sheet in which the formulas stand.
Variant ValueInSheet(const std::string& expression) {
    static const std::map<std::string, Variant> values = {{"B1", Variant::List({"OBS"})},
                                                          {"$Accounts.$B$2", Variant::List({4000.0})},
                                                          {"B3", Variant::List({4000.0})},
                                                          {"הנהלה", Variant::List({"10"})},
                                                          {"B4:B6", Variant::List({"Level2", "", ""})},
                                                          {"NoSuchName", ErrorValue{525}},
                                                          {"B7", Variant::List({45630.0})},
                                                          {"A9", Variant::List({0.0})},
                                                          {"A9&64", "64"},
                                                          {"INDEX('My ;(sheet'.A1:B2;1;2)", "Amount"}};
    return values.at(expression);
}

ArgumentReader Reader() {
    static const Locale locale;
    return {ValueInSheet, [](const std::string& path) { return "/books/" + path; }, locale};
}

struct EditCase {
    const char* what;
    std::map<std::size_t, std::string> written;   ///< in place of the ledger's arguments
    std::function<void(Selection&)> choose;       ///< in the wizard
    std::map<std::size_t, std::string> rewritten; ///< the arguments that are not as they were written
};

const EditCase edits[] = {
    {"nothing chosen: every wording stays",
     {{2, "B1"},
      {3, "1"},
      {6, R"({"All";"a note"})"},
      {9, "$Accounts.$B$2"},
      {11, ""},
      {16, "DATE(2024;1;1)"},
      {17, "EOMONTH(B7;0)"}},
     [](Selection&) {},
     {}},
    {"references stay beside what was chosen",
     {{9, "B3&\"\""}, {10, "INDEX('My ;(sheet'.A1:B2;1;2)"}, {14, "הנהלה"}},
     [](Selection& s) { s.measure = "Quantity"; },
     {{10, R"("Quantity")"}}},
    {"an empty cell joined to a text", {{9, "A9&64"}}, [](Selection& s) { EXPECT_EQ(s.account, "64"); }, {}},
    {"a reference that was chosen anew is replaced",
     {{9, "$Accounts.$B$2"}},
     [](Selection& s) { s.account = "4100"; },
     {{9, R"("4100")"}}},
    {"quotes and Hebrew, kept",
     {{4, R"({"Level2"})"}, {5, "{\"עפולה \xC2\xA0ביג\xC2\xA0\"}"}, {9, R"("א""ב")"}, {14, R"("a]]b")"}},
     [](Selection& s) {
         EXPECT_EQ(s.obsMembers, Arguments{"עפולה \"ביג\""});
         EXPECT_EQ(s.account, "א\"ב");
         EXPECT_EQ(s.firma, "a]b");
     },
     {}},
    {"quotes and Hebrew, chosen",
     {{4, "B4:B6"}, {5, R"({"x"})"}},
     [](Selection& s) {
         s.obsMembers = {"עפולה \"ביג\"", "רמת גן"};
         s.activity = "a\"b";
         s.plbs = "x]y";
     },
     {{5, "{\"עפולה \xC2\xA0ביג\xC2\xA0\";\"רמת גן\"}"}, {6, R"({"a""b";""})"}, {12, R"("x]]y")"}}},
    {"a level with its member",
     {},
     [](Selection& s) { s.obsLevel = "Cost_Centers", s.obsMembers = {"100"}; },
     {{4, R"({"Cost_Centers"})"}, {5, R"({"100"})"}}},
    {"a level that is not chosen any more",
     {{4, "B4:B6"}, {5, R"({"x"})"}},
     [](Selection& s) { s.obsLevel = "All", s.obsMembers.clear(); },
     {{4, R"({"All"})"}, {5, R"("")"}}},
    {"a member is added to the first",
     {{4, R"({"Level2"})"}, {5, R"({"x"})"}},
     [](Selection& s) { s.obsMembers.emplace_back("y"); },
     {{5, R"({"x";"y"})"}}},
    {"another file, and another group",
     {{8, R"("4")"}, {7, R"("SuperSum1")"}},
     [](Selection& s) {
         EXPECT_EQ(s.cubeFile, "/books/a.cub");
         s.cubeFile = "/b.cub", s.summaryMember = "5";
     },
     {{0, R"("/b.cub")"}, {8, R"("5")"}}},
    {"without a first date, the last one is both",
     {{16, ""}, {17, R"("31/12/2024")"}},
     [](Selection& s) { EXPECT_EQ(s.from, s.to); },
     {}},
    {"one of the dates, chosen",
     {{16, ""}},
     [](Selection& s) {
         s.to = DateFromDay({2025, 1, 31});
     },
     {{16, R"("31/12/2024")"}, {17, R"("31/01/2025")"}}},
    {"what the function cannot read",
     {{9, "NoSuchName"}, {14, R"({"10"})"}, {17, R"("soon")"}},
     [](Selection& s) {
         s.from = s.to = DateFromDay({2024, 1, 1});
     },
     {{9, R"("All")"}, {14, R"("All")"}, {17, R"("01/01/2024")"}}},
    {"an unescaped bracket in a key", {{14, R"("a]b")"}}, [](Selection&) {}, {{14, R"("a]]b")"}}},
};

TEST(EditedCall, KeepsWhatWasNotChosenAsItIsWritten) {
    for (const EditCase& edit : edits) {
        Arguments written = ledger;
        for (const auto& [argument, text] : edit.written) {
            written[argument] = text;
        }
        const EditedValueCall call(written, Reader());
        Selection selection = call.Choices();
        edit.choose(selection);
        Arguments expected = written;
        for (const auto& [argument, text] : edit.rewritten) {
            expected[argument] = text;
        }
        const ValueCall chosen = CallOf(selection);
        EXPECT_EQ(call.Rewritten(chosen, ArgumentsOf(chosen, Locale()), ';'), expected) << edit.what;
    }
}

TEST(EditedCall, ATextThatExcelTakesForNoKeyIsNoneAndIsPutIntoBraces) {
    Arguments written = ledger;
    written[2] = R"("OBS")", written[3] = "B1";
    ArgumentReader reader = Reader();
    reader.takesTextsAsKeys = false;
    const EditedValueCall call(written, reader);
    EXPECT_FALSE(call.Call().ObsName.IsArray());
    EXPECT_TRUE(call.Call().ObsNum.IsArray()) << "a cell gives a key";
    const ValueCall same = CallOf(call.Choices());
    written[2] = R"({"OBS"})";
    EXPECT_EQ(call.Rewritten(same, ArgumentsOf(same, Locale()), ';'), written);
}

TEST(EditedCall, LeavesOutTheDatesThatWereLeftOut) {
    const EditedValueCall call(Arguments(ledger.begin(), ledger.end() - 2), Reader());
    Selection selection = call.Choices();
    const ValueCall same = CallOf(selection);
    EXPECT_EQ(call.Rewritten(same, ArgumentsOf(same, Locale()), ';').size(), 16U);
    selection.from = selection.to = DateFromDay({2024, 1, 1});
    const ValueCall chosen = CallOf(selection);
    const auto rewritten = call.Rewritten(chosen, ArgumentsOf(chosen, Locale()), ',');
    ASSERT_EQ(rewritten.size(), 18U);
    EXPECT_EQ(rewritten.back(), R"("01/01/2024")");
}

TEST(EditedCall, KeepsTheReferencesOfANameFormula) {
    const EditedNameCall call({R"("a.cub")", "B1", R"("SuperSum1")", R"("a]]b")"}, Reader());
    const NamedQuery query = call.Choice();
    EXPECT_EQ((Arguments{query.cubeFile, query.cubeName, query.dimType, query.dataMember}),
              (Arguments{"/books/a.cub", "OBS", "SuperSum1", "a]b"}));
    EXPECT_EQ(call.Rewritten({"/books/a.cub", "OBS", "SuperSum2", "a]]b"}),
              (Arguments{R"("a.cub")", "B1", R"("SuperSum2")", R"("a]]b")"}));
    EXPECT_EQ(call.Rewritten({"/books/a.cub", "FNC", "SuperSum1", "4"}),
              (Arguments{R"("a.cub")", R"("FNC")", R"("SuperSum1")", R"("4")"}));
}

struct CallCase {
    const char* formula;
    std::vector<Arguments> calls;
    const char* replaced; ///< when the only call gets the arguments 1 and 2
};

const CallCase callCases[] = {
    {"=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1( \"a;b\" ;{1;\")\"};IF(B1;2;3);;\"\"\"\")",
     {{"\"a;b\"", "{1;\")\"}", "IF(B1;2;3)", "", "\"\"\"\""}},
     "=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1( 1 ;2)"},
    {"=IF(A1;OrmFunctionQel4.OrmQelFunction.QelName(\"a.cub\", B1 )&\"OrmFunctionQel4.OrmQelFunction.QelF1(1)"
     "\",0)",
     {{"\"a.cub\"", "B1"}},
     "=IF(A1;OrmFunctionQel4.OrmQelFunction.QelName(1, 2 )&\"OrmFunctionQel4.OrmQelFunction.QelF1(1)\",0)"},
    {"=-ORMFUNCTIONQEL4.ORMQELFUNCTION.QEL1('it''s; (all)'.B1;שם)/1000",
     {{"'it''s; (all)'.B1", "שם"}},
     "=-ORMFUNCTIONQEL4.ORMQELFUNCTION.QEL1(1;2)/1000"},
    {"=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1(ORMFUNCTIONQEL4.ORMQELFUNCTION.RETQELNAME(1);2)",
     {{"ORMFUNCTIONQEL4.ORMQELFUNCTION.RETQELNAME(1)", "2"}, {"1"}},
     ""},
    {"=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1()", {{}}, "=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1(1;2)"},
    {"=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1(1;2", {}, ""},
    {"=MYORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1(1)+ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1X(1)+ORMFUNCTIONQEL4."
     "ORMQELFUNCTION.QELF1",
     {},
     ""},
};

TEST(WrittenCalls, AreFoundInAnyFormula) {
    for (const CallCase& c : callCases) {
        const auto calls = FindCalls(c.formula);
        std::vector<Arguments> arguments;
        arguments.reserve(calls.size());
        for (const WrittenCall& call : calls) {
            arguments.push_back(call.arguments);
        }
        EXPECT_EQ(arguments, c.calls) << c.formula;
        if (calls.size() == 1) {
            EXPECT_EQ(WithArguments(c.formula, calls.front(), {"1", "2"}), c.replaced);
        }
    }
}

} // namespace
} // namespace qel::test
