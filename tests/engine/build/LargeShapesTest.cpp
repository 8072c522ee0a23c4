#include "qel/engine/BuildCube.h"
#include "qel/engine/Cellset.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/RunStatement.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>

namespace qel::engine {
namespace {

using test::TemporaryFolder;

constexpr std::uint32_t accountCount = 1'000'000; // one line each
constexpr std::uint32_t groupCount = 7;

constexpr std::string_view largeDefinition = R"({
  "tables": { "ledger": { "file": "ledger.csv" }, "accounts": { "file": "accounts.csv" } },
  "cubes": [ { "name": "Large", "facts": "ledger",
    "dimensions": [
      { "name": "Date", "column": "date", "calendar": { "periods": "days" } },
      { "name": "Accounts", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
        { "name": "Codes", "levels": [ { "name": "Group", "key": "group" }, { "name": "Code", "key": "code" } ] } ] },
      { "name": "Firm", "column": "firm" } ],
    "measures": [ { "name": "Amount", "column": "amount" } ] } ] })";

/// A million accounts, every day of thirty years, one firm.
struct LargeLedger {
    std::int64_t total = 0;
    std::map<std::uint32_t, std::int64_t> byGroup;
    std::map<int, std::int64_t> byYear;
    std::map<std::string, std::int64_t> byDay; ///< by the day's path in the cube

    explicit LargeLedger(const TemporaryFolder& folder) {
        using namespace std::chrono;
        const sys_days firstDay = year(1995) / January / 1;
        const auto days = static_cast<std::uint32_t>((sys_days(year(2025) / January / 1) - firstDay).count());
        std::string ledger = "date,account,firm,amount\n";
        std::string accounts = "code,group\n";
        for (std::uint32_t i = 0; i < accountCount; ++i) {
            const std::uint32_t code = 5'000'000 + i;
            const year_month_day date(firstDay + std::chrono::days(i % days));
            const auto yearNumber = static_cast<int>(date.year());
            const auto month = static_cast<unsigned>(date.month());
            const auto day = static_cast<unsigned>(date.day());
            const std::int64_t cents = std::int64_t{i} * 7919 % 2'000'001 - 1'000'000;
            fmt::format_to(std::back_inserter(ledger), "{}-{:02}-{:02},{},1,{}{}.{:02}\n", yearNumber, month,
                           day, code, cents < 0 ? "-" : "", std::abs(cents) / 100, std::abs(cents) % 100);
            fmt::format_to(std::back_inserter(accounts), "{},{}\n", code, i % groupCount);
            total += cents;
            byGroup[i % groupCount] += cents;
            byYear[yearNumber] += cents;
            byDay[fmt::format("[{}].[Q{}].[{}].[{}]", yearNumber, (month + 2) / 3, month, day)] += cents;
        }
        folder.Write("ledger.csv", ledger);
        folder.Write("accounts.csv", accounts);
    }
};

std::int64_t Cents(const Cube& cube, const std::string& slicer) {
    const Cellset cellset = RunStatement(cube, "SELECT FROM Large WHERE (" + slicer + ")");
    const CellValue& cell = cellset.Cell({});
    EXPECT_TRUE(cell.isExact) << slicer;
    EXPECT_EQ(cell.decimals, 2) << slicer;
    return cell.scaled;
}

TEST(LargeShapes, MillionAccountsThirtyYearsOfDaysAndOneFirm) {
    const TemporaryFolder folder;
    const LargeLedger ledger(folder);
    BuildOptions options;
    options.definition = folder.Write("large.json", largeDefinition);
    options.output = folder.Path("large.cub");
    BuildCube(options);
    const auto cube = CubeFile::Open(options.output)->FindCube("Large");

    EXPECT_EQ(Cents(*cube, "[Firm].[1]"), ledger.total);
    for (const auto& [group, cents] : ledger.byGroup) {
        EXPECT_EQ(Cents(*cube, fmt::format("[Accounts].[{}]", group)), cents) << group;
    }
    for (const auto& [year, cents] : ledger.byYear) {
        EXPECT_EQ(Cents(*cube, fmt::format("[Date].[{}]", year)), cents) << year;
    }
    std::size_t number = 0;
    for (const auto& [day, cents] : ledger.byDay) {
        if (++number % 97 == 0) {
            EXPECT_EQ(Cents(*cube, "[Date].[All]." + day + ", [Firm].[1]"), cents) << day;
        }
    }
    for (std::uint32_t i = 0; i < accountCount; i += accountCount / 500) {
        EXPECT_EQ(Cents(*cube, fmt::format("[Accounts].[Codes].[Code].[{}]", 5'000'000 + i)),
                  std::int64_t{i} * 7919 % 2'000'001 - 1'000'000);
    }
    // The accounts of a group that have lines in one month.
    const Cellset listed = RunStatement(
        *cube, "SELECT NON EMPTY [Accounts].[3].Children ON 0 FROM Large WHERE [Date].[2024].[Q1].[2]");
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < listed.PositionCount(0); ++i) {
        sum += listed.Cell({i}).scaled;
    }
    EXPECT_EQ(sum, Cents(*cube, "[Accounts].[3], [Date].[2024].[Q1].[2]"));
    EXPECT_GT(listed.PositionCount(0), 360U)
        << "29 days with 91 lines each, of which a seventh are the group's";
    EXPECT_LT(listed.PositionCount(0), 390U);

    constexpr std::uint64_t bytesEach = 130; // per account and its line
    EXPECT_LT(std::filesystem::file_size(options.output), bytesEach * accountCount);
}

/// Columns of 1, 2, 2, 4, 5 and five times 20 codes take 32 bits, one more than the packed key holds.
TEST(LargeShapes, NarrowColumnsFillThePackedKey) {
    constexpr std::array<std::uint32_t, 10> codes{1, 2, 2, 4, 5, 20, 20, 20, 20, 20};
    std::string ledger = "date,c0,c1,c2,c3,c4,c5,c6,c7,c8,c9,amount\n", dimensions;
    for (std::uint32_t i = 0; i < 6'000; ++i) {
        ledger += fmt::format("{}-{:02}-01", 2020 + i % 5, 1 + i / 5 % 12);
        for (std::size_t column = 0; column < codes.size(); ++column) {
            ledger += fmt::format(",{}", 10 + i / (column + 1) % codes[column]);
        }
        ledger += ",1.50\n";
    }
    for (std::size_t column = 0; column < codes.size(); ++column) {
        dimensions += fmt::format(R"(, {{ "name": "C{0}", "column": "c{0}" }})", column);
    }
    const TemporaryFolder folder;
    folder.Write("ledger.csv", ledger);
    BuildOptions options;
    options.definition = folder.Write(
        "narrow.json", R"({ "tables": { "ledger": { "file": "ledger.csv" } },
        "cubes": [ { "name": "Large", "facts": "ledger", "dimensions": [
          { "name": "Date", "column": "date", "calendar": { "periods": "months" } })" +
                           dimensions +
                           R"( ], "measures": [ { "name": "Amount", "column": "amount" } ] } ] })");
    options.output = folder.Path("narrow.cub");
    BuildCube(options);
    const auto file = CubeFile::Open(options.output);
    EXPECT_NO_THROW(file->Verify({}));
    EXPECT_EQ(Cents(file->Cubes()[0], "[C0].[10]"), 900'000);
    EXPECT_EQ(Cents(file->Cubes()[0], "[C1].[11]"), 450'000);
}

} // namespace
} // namespace qel::engine
