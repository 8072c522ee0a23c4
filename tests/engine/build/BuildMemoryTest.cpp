#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "tests/engine/FaultOf.h"
#ifndef _WIN32
#include "tests/helpers/FileSizeLimit.h"
#endif
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>

namespace qel::engine {
namespace {

/// A ledger with large and small columns, details, amounts of every width and a sort order whose key is
/// longer than a number of 64 bits; large enough for aggregates of rows and of prefix sums.
class BuildMemoryTest : public testing::Test {
protected:
    static constexpr std::uint64_t plenty = std::uint64_t{1} << 30U;

    BuildMemoryTest() {
        constexpr int lines = 15'000;
        std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same ledger every time
        const auto below = [&random](unsigned count) { return static_cast<unsigned>(random()) % count; };
        std::string ledger = "date,account,site,part,job,firm,kind,note,amount,units\n";
        for (int i = 0; i < lines; ++i) {
            fmt::format_to(std::back_inserter(ledger), "2024-{:02}-{:02},{},{},{},{},{},{},n{},{},{}\n",
                           below(12) + 1, below(28) + 1, below(3) * below(30), below(60), below(9000),
                           below(9000), below(3), below(9), below(300), below(1000000) * (below(5) + 1),
                           below(200));
        }
        folder_.Write("ledger.csv", ledger);
        options_.definition = folder_.Write("cube.json", R"({"tables": {"ledger": {"file": "ledger.csv"}},
          "cubes": [{"name": "C", "facts": "ledger", "details": ["note"],
            "dimensions": [{"name": "Date", "column": "date", "calendar": {"periods": "months"}},
              {"name": "Account", "column": "account"}, {"name": "Site", "column": "site"},
              {"name": "Part", "column": "part"}, {"name": "Job", "column": "job"},
              {"name": "Firm", "column": "firm"}, {"name": "Kind", "column": "kind"}],
            "sortOrders": [["account", "site", "date"], ["site", "account"], ["date"],
              ["kind", "part", "job", "site", "account", "date", "firm"]],
            "measures": [{"name": "Amount", "column": "amount"}, {"name": "Units", "column": "units"},
              {"name": "Lines", "aggregate": "count"}]}]})");
        options_.output = folder_.Path("out.cub");
    }

    std::string Build(std::uint64_t memory) {
        options_.memory = memory;
        BuildCube(options_);
        return folder_.Read("out.cub");
    }

    test::TemporaryFolder folder_;
    BuildOptions options_;
};

TEST_F(BuildMemoryTest, TheFileIsTheSameWithAnyMemory) {
    const std::string expected = Build(plenty);
    const auto file = CubeFile::Open(options_.output);
    file->Verify({});
    const std::size_t files = folder_.FileCount();
    for (const std::uint64_t memory : {1'000U, 30'000U, 200'000U, 1'500'000U, 8'000'000U}) {
        EXPECT_TRUE(Build(memory) == expected) << memory;
        EXPECT_EQ(folder_.FileCount(), files) << "no temporary file stays";
    }
}

#ifndef _WIN32
TEST_F(BuildMemoryTest, AFullDiskLeavesTheOldCube) {
    const std::string old = Build(plenty);
    const std::size_t files = folder_.FileCount();
    int spilled = 0;
    for (const std::uint64_t memory : {30'000U, 8'000'000U}) {
        options_.memory = memory;
        for (std::size_t room = 0; room < old.size(); room += old.size() / 9) {
            std::string fault;
            {
                const test::FileSizeLimit limit(room);
                fault = FaultOf([&] { BuildCube(options_); }).text;
            }
            EXPECT_NE(fault.find("out.cub"), std::string::npos) << room << ": " << fault;
            EXPECT_NE(fault.find(": cannot be written: "), std::string::npos) << fault;
            spilled += fault.find(".tmp: ") == std::string::npos ? 0 : 1;
            EXPECT_EQ(folder_.FileCount(), files);
            EXPECT_TRUE(folder_.Read("out.cub") == old);
        }
    }
    EXPECT_GT(spilled, 0) << "the temporary file was full, too";
}
#endif

} // namespace
} // namespace qel::engine
