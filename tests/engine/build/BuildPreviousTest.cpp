#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "tests/helpers/TemporaryFolder.h"
#include "text/Text.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace qel::engine {
namespace {

/// A ledger in two files, two cubes, accounts from a table and free texts.
struct Books {
    std::string definition = R"({"tables": {"old": {"file": "old.csv", "encoding": "windows-1255"},
        "new": {"file": "new.csv"}, "accounts": {"file": "accounts.csv"}},
      "cubes": [{"name": "C", "facts": ["old", "new"],
          "dimensions": [{"name": "Date", "column": "date", "calendar": {"periods": "days"}},
            {"name": "Accounts", "column": "account", "table": "accounts", "key": "code"},
            {"name": "Text", "column": "text"}],
          "measures": [{"name": "Amount", "column": "amount"}, {"name": "Lines", "aggregate": "count"}]},
        {"name": "D", "facts": "new", "dimensions": [{"name": "Text", "column": "text"}],
          "measures": [{"name": "Amount", "column": "amount"}]}]})";
    std::string accounts = "code,name\n7,Seven\n5,Five\n9,Nine\n";
    std::string old = "date,account,text,amount\n2024-02-01,7,\xE0,1\n2024-03-01,5,b,-2.5\n";
    std::string latest = "date,account,text,amount\r\n2024-02-01,7,b,1\r\n2024-03-01,,\"c\nd\",3e\r\n";

    void WriteTo(const test::TemporaryFolder& folder) const {
        folder.Write("cube.json", definition);
        folder.Write("accounts.csv", accounts);
        folder.Write("old.csv", old);
        folder.Write("new.csv", ReplaceAll(latest, "3e", "3"));
    }
};

struct NextBuild {
    const char* what;
    std::function<void(Books&)> change;
    std::uint64_t taken; ///< lines
    const char* obstacle;
    std::function<void(Books&)> before = [](Books&) {}; ///< a change of the first build's books
};

const NextBuild nextBuilds[] = {
    {"nothing new", [](Books&) {}, 6, ""},
    {"new lines of both files, with new and with known values",
     [](Books& b) {
         b.old += "2023-12-31,9,z,100000\n2024-02-01,7,\xE1,1\n";
         b.latest += "2025-01-01,9,a,7\r\n2025-01-01,5,\"c\nd\",7\r\n";
     },
     6, ""},
    {"another account in between", [](Books& b) { b.accounts = "code,name\n8,\n7,Seven\n5,\n9,\n"; }, 6, ""},
    {"a changed line", [](Books& b) { b.old[b.old.size() - 2] = '6'; }, 2, "old.csv does not begin with"},
    {"a line less", [](Books& b) { b.latest.resize(b.latest.find("2024-03")); }, 0, "new.csv does not begin"},
    {"another definition", [](Books& b) { b.definition += ' '; }, 0, "the definition is not the one"},
    {"a last line that was cut off", [](Books& b) { b.old += "0\n"; }, 2, "keeps no facts",
     [](Books& b) { b.old.pop_back(); }},
    {"a currency that another file could decide", [](Books& b) { b.old += "2024-02-01,7,b,1\n"; }, 2,
     "the amounts have currencies", [](Books& b) { b.old = ReplaceAll(b.old, "-2.5", "$2.5"); }},
    {"details", [](Books&) {}, 2, "keeps details",
     [](Books& b) {
         b.definition =
             ReplaceAll(b.definition, R"("facts": ["old",)", R"("details": ["text"], "facts": ["old",)");
     }},
};

/// Builds the books' cubes. Returns the options of the next build, which goes on from this one.
BuildOptions FirstBuild(const Books& books, const test::TemporaryFolder& folder) {
    books.WriteTo(folder);
    BuildOptions options;
    options.definition = folder.Path("cube.json");
    options.output = folder.Path("ledger.cub");
    options.previous = options.output;
    BuildCube(options);
    return options;
}

TEST(BuildPrevious, TakesTheLinesOfTheBuildBeforeOrReadsThemAgain) {
    for (const NextBuild& next : nextBuilds) {
        const test::TemporaryFolder folder;
        Books books;
        next.before(books);
        BuildOptions options = FirstBuild(books, folder);
        next.change(books);
        books.WriteTo(folder);
        const BuildTotals totals = BuildCube(options);
        CubeFile::Open(options.output)->Verify({});
        EXPECT_EQ(totals.linesTaken, next.taken) << next.what;
        EXPECT_TRUE(*next.obstacle == 0 ? totals.obstacle.empty()
                                        : totals.obstacle.find(next.obstacle) != std::string::npos)
            << next.what << ": " << totals.obstacle;
        const std::string wholeBytes = folder.Read("ledger.cub");
        options.previous = folder.Path("none.cub");
        const BuildTotals whole = BuildCube(options);
        EXPECT_TRUE(folder.Read("ledger.cub") == wholeBytes) << next.what;
        EXPECT_EQ(totals.linesRead, whole.linesRead) << next.what;
    }
}

/// As in a build of all lines, the fact's line is refused.
TEST(BuildPrevious, AValueThatItsTableNoLongerListsIsRefused) {
    const test::TemporaryFolder folder;
    Books books;
    BuildOptions options = FirstBuild(books, folder);
    folder.Write("accounts.csv", "code,name\n5,Five\n");
    options.skippedLines = folder.Path("skipped.csv");
    const BuildTotals totals = BuildCube(options);
    EXPECT_EQ(totals.linesSkipped, 2U);
    EXPECT_NE(totals.obstacle.find("a value that its table no longer lists"), std::string::npos);
    EXPECT_NE(BuildCube(options).obstacle.find("keeps no facts"), std::string::npos) << "lines were skipped";
}

} // namespace
} // namespace qel::engine
