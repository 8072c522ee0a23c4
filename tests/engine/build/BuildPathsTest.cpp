#include "qel/engine/BuildCube.h"
#include "tests/engine/FaultOf.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace qel::engine {
namespace {

const std::string firmDefinition =
    R"({"tables": {"ledger": {"file": "ledger.csv"}, "firms": {"file": "firms.csv"}},
  "cubes": [{"name": "A", "facts": "ledger", "measures": [{"name": "Amount", "column": "amount"}],
             "dimensions": [{"name": "Firm", "column": "firm", "table": "firms", "key": "code"}]},
            {"name": "B", "facts": "ledger", "measures": [{"name": "Amount", "column": "amount"}],
             "dimensions": [{"name": "Firm", "column": "firm"}]}]})";
const std::string firmLedger = "firm,amount\n1,5.00\n";
const std::string firms = "code\n1\n";

class BuildPaths : public testing::Test {
protected:
    BuildPaths() {
        folder_.Write("cube.json", firmDefinition);
        folder_.Write("ledger.csv", firmLedger);
        folder_.Write("firms.csv", firms);
        folder_.Write("old.cub", "an older cube");
        std::filesystem::create_directory(folder_.Path("sub"));
        std::filesystem::create_symlink(folder_.Path("ledger.csv"), folder_.Path("link.csv"));
        std::filesystem::create_hard_link(folder_.Path("firms.csv"), folder_.Path("twin.csv"));
    }

    BuildOptions Options(const std::string& output, const std::string& skipped) const {
        BuildOptions options;
        options.definition = folder_.Path("cube.json");
        options.output = folder_.Path(output); // an absolute path stays absolute
        if (!skipped.empty()) {
            options.skippedLines = folder_.Path(skipped);
        }
        return options;
    }

    static std::string Fault(const BuildOptions& options) {
        const auto [kind, text] = FaultOf([&] { BuildCube(options); });
        EXPECT_EQ(kind, ErrorKind::CannotWrite) << text;
        return text;
    }

    test::TemporaryFolder folder_;
};

TEST_F(BuildPaths, WhatIsReadIsNeverWritten) {
    const struct {
        const char *output, *skipped, *named, *fault;
    } cases[] = {
        {"cube.json", "", "cube.json", "as the cube file: it is the cube definition"},
        {"ledger.csv", "", "ledger.csv", "as the cube file: it is the file of the table \"ledger\""},
        {"sub/../firms.csv", "", "sub/../firms.csv",
         "as the cube file: it is the file of the table \"firms\""},
        {"link.csv", "", "link.csv", "as the cube file: it is the file of the table \"ledger\""},
        {"out.cub", "cube.json", "cube.json", "as the file for skipped lines: it is the cube definition"},
        {"out.cub", "link.csv", "link.csv",
         "as the file for skipped lines: it is the file of the table \"ledger\""},
        {"out.cub", "twin.csv", "twin.csv",
         "as the file for skipped lines: it is the file of the table \"firms\""},
        {"old.cub", "sub/../old.cub", "sub/../old.cub", "as the file for skipped lines: it is the cube file"},
        {"new.cub", "sub/../new.cub", "sub/../new.cub", "as the file for skipped lines: it is the cube file"},
    };
    const std::size_t files = folder_.FileCount();
    for (const auto& test : cases) {
        EXPECT_EQ(Fault(Options(test.output, test.skipped)),
                  folder_.Path(test.named).string() + ": cannot be written " + test.fault);
        EXPECT_EQ(folder_.Read("cube.json"), firmDefinition);
        EXPECT_EQ(folder_.Read("ledger.csv"), firmLedger);
        EXPECT_EQ(folder_.Read("firms.csv"), firms);
        EXPECT_EQ(folder_.Read("old.cub"), "an older cube");
        EXPECT_EQ(folder_.FileCount(), files);
    }
}

TEST_F(BuildPaths, OnlyARegularFileIsReplacedByTheCube) {
    const std::filesystem::path device = "/dev/null";
    ASSERT_TRUE(std::filesystem::is_character_file(device));
    std::filesystem::create_symlink(device, folder_.Path("device.cub"));
    EXPECT_EQ(Fault(Options("device.cub", "")),
              folder_.Path("device.cub").string() + ": cannot be written: it is not a regular file");
    EXPECT_EQ(Fault(Options(device.string(), "")), "/dev/null: cannot be written: it is not a regular file");
    EXPECT_EQ(Fault(Options("sub", "")),
              folder_.Path("sub").string() + ": cannot be written: Is a directory");
    EXPECT_TRUE(std::filesystem::is_symlink(folder_.Path("device.cub")));
    EXPECT_TRUE(std::filesystem::is_character_file(device));

    std::filesystem::create_symlink(folder_.Path("old.cub"), folder_.Path("link.cub"));
    EXPECT_GT(BuildCube(Options("link.cub", "")).bytesWritten, 0U);
    EXPECT_TRUE(std::filesystem::is_symlink(folder_.Path("link.cub")));
    EXPECT_NE(folder_.Read("old.cub"), "an older cube") << "the link's target is replaced";
}

TEST_F(BuildPaths, TheFileForSkippedLinesIsMadeForTheFirstOfThem) {
    folder_.Write("kept.txt", "of an earlier day");
    EXPECT_EQ(BuildCube(Options("out.cub", "kept.txt")).distinctLinesSkipped, 0U);
    EXPECT_EQ(folder_.Read("kept.txt"), "of an earlier day");
    EXPECT_EQ(BuildCube(Options("out.cub", "new.txt")).distinctLinesSkipped, 0U);
    EXPECT_FALSE(std::filesystem::exists(folder_.Path("new.txt")));

    folder_.Write("ledger.csv", firmLedger + "1,x\n");
    const BuildTotals totals = BuildCube(Options("out.cub", "kept.txt"));
    EXPECT_EQ(
        folder_.Read("kept.txt"),
        "skipped_line,skipped_reason,firm,amount\n3,\"column amount: expected an amount such as 1234.56, "
        "with at most 2 decimals, found \"\"x\"\"\",1,x\n");
    EXPECT_EQ(totals.linesSkipped, 2U) << "by both cubes";
    EXPECT_EQ(totals.distinctLinesSkipped, 1U) << "each line once";
    EXPECT_EQ(Fault(Options("out.cub", "absent/bad.txt")),
              folder_.Path("absent/bad.txt").string() + ": cannot be written: No such file or directory");
}

} // namespace
} // namespace qel::engine
