#include "qel/engine/BuildCube.h"

#include "engine/storage/FactTable.h"
#include "qel/engine/CubeFile.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/build/CubeText.h"
#include "tests/helpers/TemporaryFolder.h"
#include "text/Text.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <string>

namespace qel::engine {
namespace {

using test::TemporaryFolder;

/// Builds and opens a cube from tables and a definition in a temporary folder.
class BuildTest : public testing::Test {
protected:
    void Table(const std::string& name, const std::string& text) { folder_.Write(name + ".csv", text); }

    /// `cube` holds the keys of the only cube besides its name, facts and measures.
    BuildOptions Define(const std::string& cube, const std::string& extra = "",
                        const std::string& measures = R"({"name": "Amount", "column": "amount"})") {
        std::string tables;
        for (const auto& file : std::filesystem::directory_iterator(folder_.Path())) {
            if (file.path().extension() == ".csv") {
                tables += (tables.empty() ? "" : ", ") +
                          ("\"" + file.path().stem().string() + "\": {\"file\": \"") +
                          file.path().filename().string() + "\"}";
            }
        }
        options_.definition =
            folder_.Write("cube.json", "{" + extra + "\"tables\": {" + tables +
                                           R"(}, "cubes": [{"name": "C", "facts": "ledger", )" + cube +
                                           ", \"measures\": [" + measures + "]}]}");
        options_.output = folder_.Path("out.cub");
        return options_;
    }

    std::shared_ptr<const Cube> Build(const BuildOptions& options) {
        totals_ = BuildCube(options);
        const auto file = CubeFile::Open(options.output);
        file->Verify({});
        EXPECT_EQ(file->Size(), totals_.bytesWritten);
        return file->FindCube("C");
    }

    /// The message of a failing build, without the folder's name.
    std::string Fault(const BuildOptions& options) {
        return ReplaceAll(FaultOf([&] { BuildCube(options); }).text, folder_.Path().string(), "");
    }

    TemporaryFolder folder_;
    BuildOptions options_;
    BuildTotals totals_;
};

const char* const datedFirms =
    R"("dimensions": [{"name": "Date", "column": "date", "calendar": {"periods": "months"}},
                      {"name": "Firm", "column": "firm"}])";

TEST_F(BuildTest, MembersComeFromTablesListsAndTheFacts) {
    Table("accounts", "code;name;group;group_name\n"
                      "4000;\"Sales \"\"A\"\"\";4;Income\n"
                      "500;Cost ];5;\n"
                      "10000;\xD7\x9E\xD7\x9B\xD7\x99\xD7\xA8\xD7\x95\xD7\xAA;4;Ignored\n");
    Table("ledger", "account,firm,amount\n4000,b,1.00\n10000,A,0.20\n 500 ,,0.03\n4000,10,0.004\n");
    const auto cube = Build(Define(
        R"("dimensions": [
          {"name": "Accounts", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
            {"name": "Codes", "levels": [{"name": "Code", "caption": "name"}]},
            {"name": "Groups", "all": "Total", "default": "5", "levels": [
              {"name": "Group", "key": "group", "memberName": "group_name"},
              {"name": "Account", "key": "code", "memberName": "name", "order": "name"}]}]},
          {"name": "Firm", "column": "firm", "caption": "Company"},
          {"name": "MoneyType", "members": ["Local", "Euro"], "all": false}])",
        "",
        R"({"name": "Amount", "column": "amount", "decimals": 3}, {"name": "Lines", "aggregate": "count"})"));
    EXPECT_EQ(DrawHierarchy(*cube, 0), "All 1234\n"
                                       " 500=Cost ] 30\n"
                                       " 4000=Sales \"A\" 1004\n"
                                       " 10000=\xD7\x9E\xD7\x9B\xD7\x99\xD7\xA8\xD7\x95\xD7\xAA 200\n");
    EXPECT_EQ(DrawHierarchy(*cube, 1), "Total 1234\n"
                                       " Income&4 1204\n"
                                       "  Sales \"A\"&4000 1004\n"
                                       "  \xD7\x9E\xD7\x9B\xD7\x99\xD7\xA8\xD7\x95\xD7\xAA&10000 200\n"
                                       " 5 30\n"
                                       "  Cost ]&500 30\n");
    EXPECT_EQ(DrawHierarchy(*cube, 2), "All 1234\n 10 4\n A 200\n b 1000\n")
        << "an empty firm counts only in All";
    EXPECT_EQ(DrawHierarchy(*cube, 3), "Local 1234\nEuro 1234\n")
        << "a dimension without a column restricts nothing";
    const Hierarchy& groups = cube->Hierarchies()[1];
    EXPECT_EQ(groups.MemberUniqueName(groups.DefaultMember()), "[Accounts].[Groups].[Total].[5]");
    EXPECT_EQ(cube->Hierarchies()[0].KeyColumn(), groups.KeyColumn());
    EXPECT_EQ(groups.Levels()[0].name, "(All)");
    EXPECT_EQ(cube->Dimensions()[1].caption, "Company");
    EXPECT_EQ(SumOf(*cube, 1, 0, {}), 4);
}

/// Branches of different depth, a value in several groups, and groups that cross the main tree.
TEST_F(BuildTest, RaggedAndOverlappingTreesCountEveryFactOnce) {
    Table("tree", "code,a,b,other\n1,X,X1,p\n2,X,,q\n3,X,X2,p\n4,Y,Y1,q\n1,Y,Y1,p\n1,X,X2,p\n5,,Z,\n");
    Table("ledger", "code,amount\n1,0.01\n2,0.10\n3,1.00\n4,10.00\n5,100.00\n1,1000.00\n");
    const auto cube = Build(Define(
        R"("dimensions": [{"name": "D", "column": "code", "table": "tree", "key": "code", "hierarchies": [
             {"name": "Other", "levels": [{"name": "O", "key": "other"}]},
             {"name": "Tree", "levels": [{"name": "A", "key": "a"}, {"name": "B", "key": "b"},
                                         {"name": "C", "key": "code"}]}]}])"));
    EXPECT_EQ(DrawHierarchy(*cube, 1), "All 111111\n"
                                       " X 100111\n"
                                       "  X1 100001\n"
                                       "   1 100001\n"
                                       "  X2 100101\n"
                                       "   1 100001\n"
                                       "   3 100\n"
                                       " Y 101001\n"
                                       "  Y1 101001\n"
                                       "   1 100001\n"
                                       "   4 1000\n");
    EXPECT_EQ(DrawHierarchy(*cube, 0), "All 111111\n p 100101\n q 1010\n");
    EXPECT_EQ(cube->Hierarchies()[1].Ranges(1).size(), 1U) << "a group of the deepest tree is one range";
}

TEST_F(BuildTest, CalendarsHaveEveryPeriodBetweenTheirEnds) {
    const auto threeLines = "2023-12-31,0.01\n2024-01-02,0.10\n2024-04-01,1\n";
    const struct {
        const char* what;
        const char* calendar; ///< the dimension's keys
        const char* lines;
        const char* drawn;
    } cases[] = {
        {"from the first date to the last, months without facts too", R"({"periods": "months"})", threeLines,
         "All 111\n 2023 1\n  Q4&2023-Q4 1\n   12&2023-12 1\n 2024 110\n  Q1&2024-Q1 10\n   1&2024-01 10\n"
         "   2&2024-02 0\n   3&2024-03 0\n  Q2&2024-Q2 100\n   4&2024-04 100\n"},
        {"months between two days",
         R"({"periods": "months", "quarters": false, "from": "2023-11-30", "to": "2024-04-30"})", threeLines,
         "All 111\n 2023 1\n  11&2023-11 0\n  12&2023-12 1\n 2024 110\n  1&2024-01 10\n  2&2024-02 0\n  "
         "3&2024-03 0\n  4&2024-04 100\n"},
        {"days, and a line outside",
         R"({"periods": "days", "quarters": false, "from": "2023-12-31", "to": "2024-01-02"})", threeLines,
         "All 11\n 2023 1\n  12&2023-12 1\n   31&2023-12-31 1\n 2024 10\n  1&2024-01 10\n   1&2024-01-01 0\n"
         "   2&2024-01-02 10\n"},
        {"a leap day alone", R"({"periods": "days", "quarters": false})", "2024-02-29,1\n",
         "All 100\n 2024 100\n  2&2024-02 100\n   29&2024-02-29 100\n"},
        {"a month alone", R"({"periods": "months"})", "2024-02-29,1\n",
         "All 100\n 2024 100\n  Q1&2024-Q1 100\n   2&2024-02 100\n"},
        {"across a leap day", R"({"periods": "days", "quarters": false, "from": "2024-02-28"})",
         "2024-03-01,1\n",
         "All 100\n 2024 100\n  2&2024-02 0\n   28&2024-02-28 0\n   29&2024-02-29 0\n  3&2024-03 100\n"
         "   1&2024-03-01 100\n"},
        {"no leap day in a century's year", R"({"periods": "days", "quarters": false, "from": "1900-02-28"})",
         "1900-03-01,1\n",
         "All 100\n 1900 100\n  2&1900-02 0\n   28&1900-02-28 0\n  3&1900-03 100\n   1&1900-03-01 100\n"},
        {"from alone, in the month before", R"({"periods": "months", "from": "2024-03-31"})",
         "2024-04-01,1\n",
         "All 100\n 2024 100\n  Q1&2024-Q1 0\n   3&2024-03 0\n  Q2&2024-Q2 100\n   4&2024-04 100\n"},
        {"to alone, in the month after", R"({"periods": "months", "to": "2024-05-01"})", "2024-04-30,1\n",
         "All 100\n 2024 100\n  Q2&2024-Q2 100\n   4&2024-04 100\n   5&2024-05 0\n"},
        {"the last day and the first", R"({"periods": "days", "from": "2024-12-31", "to": "2025-01-01"})",
         "2025-01-01,1\n",
         "All 100\n 2024 0\n  Q4&2024-Q4 0\n   12&2024-12 0\n    31&2024-12-31 0\n"
         " 2025 100\n  Q1&2025-Q1 100\n   1&2025-01 100\n    1&2025-01-01 100\n"},
        {"no top member", R"({"periods": "months", "quarters": false, "to": "2025-01-31"}, "all": false)",
         "2024-12-01,1\n", "2024 100\n 12&2024-12 100\n2025 0\n 1&2025-01 0\n"},
    };
    for (const auto& test : cases) {
        Table("ledger", std::string("date,amount\n") + test.lines);
        BuildOptions options =
            Define(std::string(R"("dimensions": [{"name": "Date", "column": "date", "calendar": )") +
                   test.calendar + "}]");
        options.skippedLines = folder_.Path("skipped");
        const auto cube = Build(options);
        EXPECT_EQ(DrawHierarchy(*cube, 0), test.drawn) << test.what;
        EXPECT_TRUE(cube->Dimensions()[0].isTime);
    }
}

/// The choice of main tree and sort orders affects speed, never a result.
TEST_F(BuildTest, TheMainTreeAndTheSortOrdersChangeNoSum) {
    const struct {
        const char* what;
        const char* main; ///< keys of the dimension with the flat tree
        const char* sortOrders;
        std::size_t deepRanges, flatRanges; ///< number of ranges of each tree's first group
        std::vector<std::vector<std::uint16_t>> orders;
    } cases[] = {
        {"the deepest tree numbers", "", "", 1, 2, {{0, 1}}},
        {"the main one does", R"(, "main": true)", "", 3, 1, {{0, 1}}},
        {"deepest, two orders", "", R"(, "sortOrders": [["firm", "code"], ["code"]])", 1, 2, {{1, 0}, {0}}},
        {"main, two orders",
         R"(, "main": true)",
         R"(, "sortOrders": [["code", "firm"], ["firm"]])",
         3,
         1,
         {{0, 1}, {1}}},
    };
    Table("tree", "code,g,h\n1,a,x\n2,b,x\n3,a,x\n4,b,y\n5,a,y\n6,b,y\n");
    Table("ledger",
          "code,firm,amount\n6,1,0.32\n1,1,0.01\n5,2,0.16\n2,1,0.02\n4,2,0.08\n3,1,0.04\n1,2,0.64\n");
    for (const auto& test : cases) {
        const auto cube = Build(Define(fmt::format(R"("dimensions": [
              {{"name": "Deep", "column": "code", "table": "tree", "key": "code", "hierarchies": [
                {{"name": "Deep", "levels": [{{"name": "G", "key": "g"}}, {{"name": "C", "key": "code"}}]}}]}},
              {{"name": "Flat", "column": "code", "table": "tree", "key": "code"{}, "hierarchies": [
                {{"name": "Flat", "levels": [{{"name": "H", "key": "h"}}]}}]}},
              {{"name": "Firm", "column": "firm"}}]{})",
                                                   test.main, test.sortOrders)));
        EXPECT_EQ(DrawHierarchy(*cube, 0),
                  "All 127\n a 85\n  1 65\n  3 4\n  5 16\n b 42\n  2 2\n  4 8\n  6 32\n")
            << test.what;
        EXPECT_EQ(DrawHierarchy(*cube, 1), "All 127\n x 71\n y 56\n") << test.what;
        EXPECT_EQ(DrawHierarchy(*cube, 2), "All 127\n 1 39\n 2 88\n") << test.what;
        EXPECT_EQ(cube->Hierarchies()[0].Ranges(1).size(), test.deepRanges) << test.what;
        EXPECT_EQ(cube->Hierarchies()[1].Ranges(1).size(), test.flatRanges) << test.what;
        std::vector<std::vector<std::uint16_t>> orders;
        for (std::size_t i = 0; i < cube->Facts().Projections().size(); ++i) {
            const auto order = cube->Facts().Projections()[i].SortOrder();
            orders.emplace_back(order.begin(), order.end());
            EXPECT_EQ(SumOf(*cube, 0, i, {{0, 1}, {1, 2}}), 16) << test.what << ": a and y share 5";
            EXPECT_EQ(SumOf(*cube, 0, i, {{1, 1}, {2, 2}}), 64) << test.what << ": x of firm 2";
        }
        EXPECT_EQ(orders, test.orders) << test.what;
    }
}

/// For any combination of members, every sort order gives the sum of the CSV lines.
TEST_F(BuildTest, SumsAgreeWithTheLinesInEverySortOrder) {
    std::mt19937 random(7);
    std::string ledger = "date,account,firm,amount\n";
    std::map<std::string, std::int64_t> byAccount, byFirm, byBoth;
    std::int64_t total = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::string account = std::to_string(random() % 300), firm = std::to_string(random() % 3);
        const auto cents = static_cast<std::int64_t>(random() % 2000001) - 1000000;
        ledger += fmt::format("2024-{:02}-15,{},{},{}{}.{:02}\n", random() % 9 + 1, account, firm,
                              cents < 0 ? "-" : "", std::abs(cents) / 100, std::abs(cents) % 100);
        byAccount[account] += cents;
        byFirm[firm] += cents;
        byBoth[fmt::format("{}/{}", account, firm)] += cents;
        total += cents;
    }
    Table("ledger", ledger);
    const auto cube = Build(Define(
        std::string(datedFirms)
            .insert(std::string(datedFirms).size() - 1, R"(, {"name": "Account", "column": "account"})")));
    ASSERT_EQ(cube->Facts().Projections().size(), 2U) << "accounts and months each lead one";
    const Hierarchy& firms = cube->Hierarchies()[1];
    const Hierarchy& accounts = cube->Hierarchies()[2];
    for (std::size_t order = 0; order < 2; ++order) {
        EXPECT_EQ(SumOf(*cube, 0, order, {}), total);
        for (MemberId firm = 1; firm < firms.MemberCount(); ++firm) {
            EXPECT_EQ(SumOf(*cube, 0, order, {{1, firm}}), byFirm[std::string(firms.MemberName(firm))]);
        }
        for (MemberId account = 1; account < accounts.MemberCount(); account += 17) {
            const std::string name(accounts.MemberName(account));
            EXPECT_EQ(SumOf(*cube, 0, order, {{2, account}}), byAccount[name]);
            EXPECT_EQ(SumOf(*cube, 0, order, {{2, account}, {1, 2}}), byBoth[name + "/1"]);
        }
    }
}

TEST_F(BuildTest, AmountsOfEveryWidthAreExact) {
    const struct {
        const char* lines;
        std::uint8_t width;
        std::int64_t sum;
    } cases[] = {
        {"1,0.00\n", 1, 0},
        {"1,1.27\n1,-1.28\n", 1, -1},
        {"1,1.28\n1,0.01\n", 2, 129},
        {"1,1.28\n1,-327.67\n", 2, -32639},
        {"1,1.28\n", 1, 128},
        {"1,-327.68\n1,327.67\n", 2, -1},
        {"1,327.68\n1,0.01\n", 4, 32769},
        {"1,-21474836.48\n1,0.01\n", 4, -2147483647},
        {"1,21474836.48\n1,0.01\n", 8, 2147483649},
        {"1,-21474836.48\n1,0.50\n", 4, -2147483598},
        {"1,46116860184273879.03\n1,-46116860184273879.04\n", 8, -1},
        {"1,92233720368547758.06\n1,0.01\n", 8, 9223372036854775807},
        {"1,92233720368547758.07\n", 1, 9223372036854775807},
    };
    for (const auto& test : cases) {
        Table("ledger", std::string("firm,amount\n") + test.lines);
        const auto cube = Build(Define(R"("dimensions": [{"name": "Firm", "column": "firm"}])"));
        EXPECT_EQ(cube->Facts().Measures()[0].width, test.width) << test.lines;
        EXPECT_EQ(SumOf(*cube, 0, 0, {}), test.sum) << test.lines;
    }
    Table("ledger", "firm,amount\n1,46116860184273879.04\n1,-46116860184273879.04\n");
    EXPECT_EQ(Fault(Define(R"("dimensions": [{"name": "Firm", "column": "firm"}])")),
              "cube C, measure Amount: the amounts are too large; the sum of their absolute values is beyond "
              "63 bits at 2 decimals");
}

TEST_F(BuildTest, AMeasureSubtractsAColumn) {
    const char* measure = R"({"name": "Balance", "column": "debit", "minus": "credit"})";
    const char* dimensions = R"("dimensions": [{"name": "Firm", "column": "firm"}])";
    Table("ledger", "firm,debit,credit\n1,7.25,\n1,,2.20\n2,-92233720368547740,8.07\n");
    const auto cube = Build(Define(dimensions, "", measure));
    EXPECT_EQ(SumOf(*cube, 0, 0, {}), 505 - 9223372036854774807);
    const struct {
        const char *line, *fault;
    } cases[] = {
        {"1,1,x\n",
         "column credit: expected an amount such as 1234.56, with at most 2 decimals, found \"x\""},
        {"1,-92233720368547750,8.08\n",
         "column credit: the amount 8.08 is too large; the most is 92233720368547758.07"},
        {"1,€1,$1\n", "column credit: \"$1\" is in $, and amounts before it are in €; they have no sum: "
                      "build a cube of each currency"},
    };
    for (const auto& test : cases) {
        Table("ledger", std::string("firm,debit,credit\n") + test.line);
        EXPECT_EQ(Fault(Define(dimensions, "", measure)), std::string("ledger.csv, line 2, ") + test.fault);
    }
}

TEST_F(BuildTest, BadLinesStopTheBuildOrAreSkipped) {
    const struct {
        const char *line, *fault;
    } cases[] = {
        {"2024-01-31,1,x,\n",
         "column account: \"x\" is not in the table of dimension Account (accounts.csv)"},
        {"31/01/2024,1,7,2\n",
         R"(column date: expected a date such as 2024-12-31, found "31/01/2024"; set "dates": "dmy" in the table "ledger")"},
        {",1,7,2\n", "column date: expected a date such as 2024-12-31, found \"\""},
        {"2023-12-31,1,7,2\n",
         "column date: \"2023-12-31\" lies outside the calendar (2024-01-01 to any date)"},
        {"2024-01-31,1,7,1.005\n",
         "column amount: expected an amount such as 1234.56, with at most 2 decimals, found \"1.005\"; "
         "set \"decimals\": 3 in the measure"},
        {"2024-01-31,1,7,\"1,005\"\n",
         "column amount: expected an amount such as 1234.56, with at most 2 decimals, found \"1,005\"; "
         "set \"decimal\": \".\", \"thousands\": \",\" in the table \"ledger\""},
        {"2024-01-31,1,7,99999999999999999999\n",
         "column amount: the amount 99999999999999999999 is too large; the most is 92233720368547758.07"},
        {"2024-01-31,new,7\n", "expected 4 fields, found 3"},
        {"2024-01-31,\"new,7,2\n", "a quote is not closed"},
        {"2024-01-31,\xFF,7,2\n",
         R"(the text is not in the file's encoding; set "encoding", such as "windows-1255")"},
    };
    Table("accounts", "code\n7\n");
    const std::string header = "date,firm,account,amount\n";
    const std::string good = "2024-01-31,1,7,2\n\n2024-02-01,2,,3\n";
    const std::string cube =
        R"("dimensions": [{"name": "Date", "column": "date", "calendar": {"periods": "days", "from": "2024-01-01"}},
          {"name": "Firm", "column": "firm"}, {"name": "Account", "column": "account", "table": "accounts", "key": "code"}])";
    for (const auto& test : cases) {
        Table("ledger", header + good + test.line);
        BuildOptions options = Define(cube);
        std::filesystem::remove(options.output);
        const bool hasColumn = std::string(test.fault).substr(0, 7) == "column ";
        EXPECT_EQ(Fault(options), std::string("ledger.csv, line 5") + (hasColumn ? ", " : ": ") + test.fault);
        EXPECT_FALSE(std::filesystem::exists(options.output));

        options.skippedLines = folder_.Path("skipped.txt");
        const auto built = Build(options);
        EXPECT_EQ(folder_.Read("skipped.txt"), "skipped_line,skipped_reason," + header + "5,\"" +
                                                   ReplaceAll(test.fault, "\"", "\"\"") + "\"," + test.line);
        EXPECT_EQ(totals_.linesRead, 3U);
        EXPECT_EQ(totals_.linesKept, 2U);
        EXPECT_EQ(totals_.linesSkipped, 1U);
        EXPECT_EQ(SumOf(*built, 0, 0, {}), 500);
        EXPECT_EQ(built->Hierarchies()[1].MemberCount(), 3U)
            << "a skipped line adds no member: " << test.line;
    }
}

TEST_F(BuildTest, SkippedLinesOfATableThatIsReadTwiceAreWrittenOnce) {
    Table("ledger", "code,name,amount\n1,One,5\n1\n2,Two,x\n");
    BuildOptions options =
        Define(R"("dimensions": [{"name": "D", "column": "code", "table": "ledger", "key": "code",
        "hierarchies": [{"name": "N", "levels": [{"name": "L", "memberName": "name"}]}]}])");
    options.skippedLines = folder_.Path("skipped.txt");
    const auto cube = Build(options);
    EXPECT_EQ(
        folder_.Read("skipped.txt"),
        "skipped_line,skipped_reason,code,name,amount\n3,\"expected 3 fields, found 1\",1\n4,\"column "
        "amount: expected an amount such as 1234.56, with at most 2 decimals, found \"\"x\"\"\",2,Two,x\n");
    EXPECT_EQ(totals_.dimensionLinesSkipped, 1U);
    EXPECT_EQ(DrawHierarchy(*cube, 0), "All 500\n One&1 500\n Two&2 0\n");
}

TEST_F(BuildTest, SaysWhatIsMissing) {
    Table("ledger", "date,firm,amount\n");
    Table("empty", "");
    std::filesystem::create_directory(folder_.Path("folder.csv"));
    EXPECT_EQ(Fault(Define(datedFirms)), "cube C, facts of ledger.csv (it has no lines below its header), "
                                         "column date: there are no dates; set "
                                         "the calendar's \"from\" and \"to\"");
    const std::pair<const char*, const char*> cases[] = {
        {R"("column": "frm")",
         R"(ledger.csv: there is no column "frm"; the columns are "date", "firm", "amount"; did you mean "firm"?)"},
        {R"("column": "firm", "table": "ledger", "key": "code")",
         R"(ledger.csv: there is no column "code"; the columns are "date", "firm", "amount")"},
        {R"("column": "firm", "table": "empty", "key": "code")",
         "empty.csv: the file is empty, expected a line with the names of the columns"},
        {R"("column": "firm", "table": "folder", "key": "code")", "folder.csv: is a folder, not a file"},
        {R"("column": "firm", "default": "9")", "cube.json: cubes[0].dimensions[0]: the hierarchy \"D\" has "
                                                "no member with the key \"9\", which is to be "
                                                "its default"},
        {R"("column": "firm", "all": false)",
         R"(cube.json: cubes[0].dimensions[0]: the hierarchy "D" would have no members)"},
    };
    for (const auto& [dimension, fault] : cases) {
        EXPECT_EQ(Fault(Define(fmt::format(R"("dimensions": [{{"name": "D", {}}}])", dimension))), fault);
    }
    BuildOptions options = Define(datedFirms);
    options.definition = folder_.Path("absent.json");
    EXPECT_EQ(Fault(options), "absent.json: No such file or directory");
    options = Define(datedFirms);
    options.output = folder_.Path("absent/out.cub");
    EXPECT_EQ(Fault(options), "absent/out.cub: cannot be written: No such file or directory");
    Table("ledger", "date,firm,amount\n0204-01-01,1,1\n2024-01-01,1,1\n");
    EXPECT_EQ(Fault(Define(datedFirms)),
              "cube C, facts of ledger.csv, column date: the dates span more than 200 years, from 0204-01-01 "
              "to 2024-01-01; set the calendar's \"from\" and \"to\"");
}

TEST_F(BuildTest, SeveralTablesAndCubesWithTheirOwnForms) {
    folder_.Write("a.csv", "date,firm,amount\n2024-01-01,1,1.5\n");
    folder_.Write("b.csv", "Datum;Firma;Betrag\n31.12.2024;1;1.000,25-\n01.02.2024;2;(3)\n");
    options_.definition = folder_.Write("cube.json", R"({
      "tables": {"a": {"file": "a.csv"},
        "b": {"file": "b.csv", "dates": "dmy", "decimal": ",", "thousands": ".",
              "columns": {"date": "Datum", "firm": "Firma", "amount": "Betrag"}}},
      "cubes": [
        {"name": "B", "facts": "b", "dimensions": [{"name": "Firm", "column": "firm"}],
         "measures": [{"name": "Amount", "column": "amount"}]},
        {"name": "C", "facts": ["a", "b"], "sortOrders": [["firm", "date"], ["date"]],
         "dimensions": [{"name": "Firm", "column": "firm"},
                        {"name": "Date", "column": "date", "calendar": {"periods": "months", "levels": ["J", "Q", "M"]}}],
         "measures": [{"name": "Amount", "column": "amount"}]}]})");
    options_.output = folder_.Path("out.cub");
    std::vector<std::string> steps;
    options_.progress = [&steps](const std::string& step, double share) {
        EXPECT_GE(share, 0);
        EXPECT_LE(share, 1);
        if (share == 1) {
            steps.push_back(step);
        }
    };
    const auto cube = Build(options_);
    EXPECT_EQ(DrawHierarchy(*cube, 0), "All -100175\n 1 -99875\n 2 -300\n");
    EXPECT_EQ(cube->Hierarchies()[1].FindLevel("m"), 3U);
    EXPECT_EQ(cube->Facts().Projections().size(), 2U);
    const auto other = CubeFile::Open(options_.output)->FindCube("b");
    EXPECT_EQ(DrawHierarchy(*other, 0), "All -100325\n 1 -100025\n 2 -300\n");
    EXPECT_EQ(steps, (std::vector<std::string>{"Reading b.csv", "Reading a.csv", "Reading b.csv", "Writing B",
                                               "Writing C"}));
}

TEST_F(BuildTest, CalculationsMustFitTheCube) {
    Table("ledger", "date,firm,amount\n2024-01-01,1,1\n");
    const struct {
        const char *key, *calculations, *fault;
    } cases[] = {
        {"calculatedMembers", R"~({"name": "[Measures].[Net]", "formula": "1"},
                                 {"name": "[Measures].[Tax]", "formula": "0.2 * [Measures].[Nett]"})~",
         "calculatedMembers[1]: the cube's definition of [Measures].[Tax], line 1, column 18: [Measures] has "
         "no member [Nett], near \"… [Measures].[Nett]\""},
        {"calculatedMembers",
         R"~({"name": "Net", "formula": "1"}, {"name": "[Measures].[NET]", "formula": "2"})~",
         "calculatedMembers[1]: the cube's definition of [Measures].[NET], line 1, column 1: the calculated "
         "member NET is defined twice, near \"[Measures].[NET]\""},
        {"calculatedMembers", R"~({"name": "[Firm].[1]", "formula": "1"})~",
         "calculatedMembers[0]: the cube's definition of [Firm].[1]: the cube has a dimension, a level or a "
         "member of this name"},
        {"calculatedMembers", R"~({"name": "A", "formula": "[Measures].[B]"},
             {"name": "B", "formula": "Sum(s, 1)"}, {"name": "C", "formula": "[Measures].[A] + 1"}], "namedSets": [
             {"name": "s", "formula": "Filter([Firm].Members, (StrToMember(\"[Measures].[C]\"), [Firm].[1]) > 0)"})~",
         "calculatedMembers[0]: the cube's definition of A needs itself: A needs B needs s needs C needs A"},
        {"namedSets", R"~({"name": "s", "formula": "{[Firm].[1]}"}, {"name": "[S]", "formula": "{}"})~",
         "namedSets[1]: the cube's definition of [S], line 1, column 1: the set is defined twice, near "
         "\"[S]\""},
        {"namedSets", R"~({"name": "s", "formula": "Head(t)"}, {"name": "t", "formula": "{[Firm].[1]}"}],
             "calculatedMembers": [{"name": "A", "formula": "Count(s)"})~",
         "namedSets[0]: the cube's definition of s, line 1, column 6: the set t is not defined before this "
         "one, "
         "near \"Head(t)\""},
        {"namedSets", R"~({"name": "firm", "formula": "{}"})~",
         "namedSets[0]: the cube's definition of firm: the cube has a dimension, a level or a member of this "
         "name"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Fault(Define(fmt::format(R"({}, "{}": [{}])", datedFirms, test.key, test.calculations))),
                  std::string("cube.json: cubes[0].") + test.fault);
    }
}

TEST_F(BuildTest, AFailedBuildLeavesTheOldCube) {
    Table("ledger", "date,firm,amount\n2024-01-01,1,1\n");
    Build(Define(datedFirms));
    const std::string before = folder_.Read("out.cub");
    Table("ledger", "date,firm,amount\n2024-01-01,1,1\nwrong\n");
    const std::size_t files = folder_.FileCount();
    EXPECT_EQ(Fault(Define(datedFirms)), "ledger.csv, line 3: expected 3 fields, found 1");
    EXPECT_EQ(folder_.Read("out.cub"), before);
    EXPECT_EQ(folder_.FileCount(), files);
}

} // namespace
} // namespace qel::engine
