#include "cli/CellsetOutput.h"
#include "cli/InputLines.h"
#include "cli/TextTable.h"
#include "platform/value/ValueText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <sstream>

namespace qel {
namespace {

TEST(ValueText, KeepsCentsAndDropsADoublesRounding) {
    const struct {
        double number;
        const char* text;
    } cases[] = {
        {0, "0"},
        {-0.0, "0"},
        {12, "12"},
        {-1234567.89, "-1234567.89"},
        {0.1 + 0.2, "0.3"},
        {1.005, "1.005"},
        {0.07, "0.07"},
        {-0.000001, "-0.000001"},
        {100, "100"},
        {9999999999999.99, "9999999999999.99"},
        {12345678901234.67, "12345678901234.67"},
        {-70368744177663.99, "-70368744177663.99"},
        {922337203685477.62, "922337203685477.6"}, // its double has no other cents
        {999999999999999.9, "999999999999999.9"},
        {2251799813685249.5, "2251799813685249.5"},
        {123456789012345678.0, "123456789012345680"},
        {1234567890123.4568, "1234567890123.4568"},
        {123456789.123456789, "123456789.123457"},
        {1500.3 - 1000.2, "500.1"},
        {2.0 / 3, "0.666666666666667"},
        {1e15, "1000000000000000"},
        {1e20, "100000000000000000000"},
        {1e21, "1E+21"},
        {1.2345678901234567e25, "1.23456789012346E+25"},
        {-1.25e300, "-1.25E+300"},
        {1e-9, "0.000000001"},
        {2.5e-10, "2.5E-10"},
        {std::numeric_limits<double>::infinity(), "#NUM!"},
        {std::numeric_limits<double>::quiet_NaN(), "#NUM!"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ValueText(c.number), c.text);
    }
    EXPECT_EQ(ValueText(std::int16_t{0}), "0");
    EXPECT_EQ(ValueText("Outdated Cube Version"), "Outdated Cube Version");
    EXPECT_EQ(ValueText(Null{}), "");
}

TEST(InputLines, ReadsWhatEditorsAndWindowsWrite) {
    std::istringstream input("\xEF\xBB\xBF=F(1)\r\n\r\n   \n\t\n=F(2)\n=F(3)");
    InputLines lines(input);
    std::vector<std::pair<std::size_t, std::string>> read;
    while (const auto line = lines.NextFilled()) {
        read.emplace_back(lines.Number(), *line);
    }
    const std::vector<std::pair<std::size_t, std::string>> expected = {
        {1, "=F(1)"}, {5, "=F(2)"}, {6, "=F(3)"}};
    EXPECT_EQ(read, expected);
}

TEST(TextTable, AlignsByWhatIsSeen) {
    TextTable table{1, {{"name", "Q1"}, {"שָׁלוֹם", "5"}, {"line\nbreak", "-1234.5"}}};
    std::ostringstream output;
    PrintTable(table, output);
    EXPECT_EQ(output.str(), "name             Q1\n"
                            "שָׁלוֹם              5\n"
                            "line break  -1234.5\n");
}

CellsetMember Named(const std::string& caption, const std::string& level = "L") {
    return {caption, "[D].[" + caption + "]", level, caption, 1};
}

CellsetTable SmallGrid() {
    CellsetTable grid;
    grid.axisCount = 2;
    grid.columns = {{Named("2024"), Named("Amount")}, {Named("2024"), Named("A \"quoted\", one")}};
    grid.rows = {{Named("4000", "Account"), Named("שכר", "AccountName")},
                 {Named("5000", "Account"), Named("a\nb", "AccountName")}};
    grid.cells = {{1234.5, Null{}}, {-0.25, 3.0}};
    return grid;
}

TEST(CellsetOutput, KeysOfServersAreTakenFromUniqueNames) {
    CellsetMember member = Named("Sales");
    EXPECT_EQ(TextOf(member, MemberText::Key), "Sales");
    member.uniqueName = "[A].[N].&[40]]00]";
    EXPECT_EQ(TextOf(member, MemberText::Key), "40]00");
    member.key = "2024-01"; // a code that looks like a month has a caption of its own
    EXPECT_EQ(TextOf(member), "2024-01");
    member.caption = "January sales";
    EXPECT_EQ(TextOf(member), "January sales");
}

TEST(CellsetOutput, TableHasAHeadingLineForEveryColumnMember) {
    std::ostringstream output;
    PrintAsTable(SmallGrid(), output);
    EXPECT_EQ(output.str(), "                        2024             2024\n"
                            "Account  AccountName  Amount  A \"quoted\", one\n"
                            "4000     שכר          1234.5\n"
                            "5000     a b           -0.25                3\n");
}

std::string CsvOf(const CellsetTable& grid) {
    std::ostringstream output;
    PrintAsCsv(grid, output);
    return output.str();
}

TEST(CellsetOutput, CsvFieldsAreQuotedOnlyWhereAReaderWouldSplitThem) {
    EXPECT_EQ(CsvOf(SmallGrid()), "Account,AccountName,2024 / Amount,\"2024 / A \"\"quoted\"\", one\"\n"
                                  "4000,שכר,1234.5,\n"
                                  "5000,\"a\nb\",-0.25,3\n");
    const struct {
        const char *caption, *field;
    } cases[] = {
        {"plain", "plain"},
        {"", ""},
        {"two words", "two words"},
        {" blanks around ", " blanks around "},
        {"a;b|c\td", "a;b|c\td"},
        {"O'Neil", "O'Neil"},
        {"a,b", "\"a,b\""},
        {"\"", "\"\"\"\""},
        {"5\" pipe", "\"5\"\" pipe\""},
        {"\"all\"", "\"\"\"all\"\"\""},
        {"old\rMac", "\"old\rMac\""},
        {"two\r\nlines", "\"two\r\nlines\""},
        {"חשבון, \"ישן\"", "\"חשבון, \"\"ישן\"\"\""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CsvOf({2, {{Named("Amount")}}, {{Named(c.caption)}}, {{1.5}}}),
                  std::string("L,Amount\n") + c.field + ",1.5\n");
    }
}

TEST(CellsetOutput, JsonTellsEveryCellAndShape) {
    struct Case {
        const char* what;
        CellsetTable grid;
        const char *axes, *cells;
    };
    const double infinite = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {"no axes", {0, {{}}, {{}}, {{7.5}}}, "[]", "[[7.5]]"},
        {"one axis", {1, {{Named("x")}}, {{}}, {{0.1}}}, "[1]", "[[0.1]]"},
        {"no row", {2, {{Named("x")}, {Named("y")}}, {}, {}}, "[2,0]", "[]"},
        {"cents keep their shortest form",
         {2, {{Named("x")}}, {{Named("r")}, {Named("s")}}, {{-1500.3}, {9999999999999.99}}},
         "[1,2]",
         "[[-1500.3],[9999999999999.99]]"},
        {"no value", {1, {{Named("x")}}, {{}}, {{Null{}}}}, "[1]", "[[null]]"},
        {"numbers that JSON lacks",
         {1, {{Named("x")}, {Named("y")}, {Named("z")}}, {{}}, {{infinite, -infinite, std::nan("")}}},
         "[3]",
         R"([["Infinity","-Infinity","NaN"]])"},
        {"a condition", {1, {{Named("x")}}, {{}}, {{true}}}, "[1]", "[[true]]"},
        {"a text", {1, {{Named("x")}}, {{}}, {{"a \"b\"\n"}}}, "[1]", R"([["a \"b\"\n"]])"},
    };
    for (const auto& c : cases) {
        std::ostringstream output;
        PrintAsJson(c.grid, output);
        const auto document = nlohmann::json::parse(output.str());
        auto positions = nlohmann::json::array(); // of each axis
        for (const auto& axis : document["axes"]) {
            positions.push_back(axis.size());
        }
        EXPECT_EQ(positions.dump(), c.axes) << c.what;
        EXPECT_EQ(document["cells"].dump(), c.cells) << c.what;
    }
}

TEST(CellsetOutput, JsonKeepsAxesAndEmptyCells) {
    const CellsetTable grid{2, {{Named("bad \xD7 byte")}}, {{Named("4000", "Account")}}, {{Null{}}}};
    std::ostringstream output;
    PrintAsJson(grid, output);
    std::string flat;
    for (const char c : output.str()) {
        if (c != ' ' && c != '\n') {
            flat += c;
        }
    }
    EXPECT_EQ(flat, R"({"axes":[[{"members":[{"name":"bad�byte","caption":"bad�byte",)"
                    R"("uniqueName":"[D].[bad�byte]","level":"L","depth":1}]}],)"
                    R"([{"members":[{"name":"4000","caption":"4000","uniqueName":"[D].[4000]",)"
                    R"("level":"Account","depth":1}]}]],"cells":[[null]]})");
}

TEST(CellsetOutput, NoAxesIsTheCellAlone) {
    const CellsetTable grid{0, {{}}, {{}}, {{7.5}}};
    std::ostringstream table;
    PrintAsTable(grid, table);
    EXPECT_EQ(table.str(), "7.5\n");
    EXPECT_EQ(CsvOf(grid), "7.5\n");
}

} // namespace
} // namespace qel
