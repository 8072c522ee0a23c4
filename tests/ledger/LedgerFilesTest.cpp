#include "examples/ledger/LedgerFiles.h"

#include "examples/ledger/ChartOfAccounts.h"
#include "examples/ledger/GroupLedger.h"
#include "examples/ledger/Journal.h"
#include "examples/ledger/WideLedger.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

namespace qel::ledger {
namespace {

using test::TemporaryFolder;

constexpr std::uint64_t committedSeed = 17;

std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(LedgerFiles, TheCommittedExampleIsWhatTheGeneratorWrites) {
    const TemporaryFolder folder;
    LedgerCsv csv(folder.Path() / "ledger.csv");
    GenerateGroupLedger(committedSeed, [&](const LedgerLine& line) { csv.Write(line); });
    csv.Close();
    for (const DimensionTable& table : GroupTables()) {
        WriteTable(folder.Path(), table);
    }
    WriteDefinition(folder.Path(), groupObsLevels);

    std::size_t compared = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder.Path())) {
        const std::filesystem::path committed =
            std::filesystem::path(QEL_SOURCE_DIR) / "examples/ledger" / file.path().filename();
        EXPECT_TRUE(Contents(file.path()) == Contents(committed))
            << file.path().filename() << " differs; run qel-ledger-generate --output examples/ledger";
        ++compared;
    }
    EXPECT_EQ(compared, 12U);
}

TEST(LedgerFiles, NamesWithDelimitersAndQuotesAreQuoted) {
    const TemporaryFolder folder;
    WriteTable(
        folder.Path(),
        {"t.csv", {"code", "name"}, {{"1", "a,b"}, {"2", "say \"no\""}, {"3", "plain ']&"}, {"4", ""}}});
    EXPECT_EQ(Contents(folder.Path() / "t.csv"),
              "code,name\n1,\"a,b\"\n2,\"say \"\"no\"\"\"\n3,plain ']&\n4,\n");
    EXPECT_THROW(LedgerCsv(folder.Path() / "no such folder" / "ledger.csv"), std::runtime_error);
}

TEST(LedgerFiles, AmountsAndQuantitiesAreExactTexts) {
    const TemporaryFolder folder;
    LedgerLine line;
    line.entry = 1;
    line.date = std::chrono::year{2024} / 2 / 29;
    line.firm = "10";
    line.account = "4111";
    LedgerCsv csv(folder.Path() / "ledger.csv");
    for (const auto& [thousandths, cents] : std::initializer_list<std::pair<std::int64_t, std::int64_t>>{
             {0, -5}, {-1500, 123456789}, {2000, -100}, {-7, 0}}) {
        line.thousandths = thousandths;
        line.cents = cents;
        csv.Write(line);
    }
    csv.Close();
    const std::string text = Contents(folder.Path() / "ledger.csv");
    EXPECT_EQ(text.substr(text.find('\n') + 1), "1,2024-02-29,10,4111,,,,,,,,,,-0.05\n"
                                                "1,2024-02-29,10,4111,,,,,,,,,-1.500,1234567.89\n"
                                                "1,2024-02-29,10,4111,,,,,,,,,2,-1.00\n"
                                                "1,2024-02-29,10,4111,,,,,,,,,-0.007,0.00\n");
}

/// Sums of a ledger that must be zero, and the codes that it uses.
struct Books {
    std::map<std::uint64_t, std::int64_t> entries;
    std::map<std::string, std::int64_t> firmMonths;
    std::map<std::string, std::set<std::string>> used;
    std::int64_t result = 0; ///< of the profit and loss accounts

    void Add(const LedgerLine& line) {
        entries[line.entry] += line.cents;
        firmMonths[fmt::format("{} {}-{}", line.firm, static_cast<int>(line.date.year()),
                               static_cast<unsigned>(line.date.month()))] += line.cents;
        used["accounts.csv"].emplace(line.account);
        used["activities.csv"].emplace(line.analysis.activity);
        used["cost_centres.csv"].emplace(line.analysis.costCentre);
        used["obs.csv"].emplace(line.analysis.obs);
        used["obs_numbers.csv"].emplace(line.analysis.obsNumber);
        used["firms.csv"].emplace(line.firm);
        used["plbs.csv"].emplace(line.plbs);
        used["rh.csv"].emplace(line.rh);
        used["opening_balance.csv"].emplace(line.openingBalance);
        used["money_sets.csv"].emplace(line.moneySet);
        result += IsProfitAndLoss(line.account) ? line.cents : 0;
    }

    void ExpectBalanced() const {
        for (const auto& [entry, sum] : entries) {
            EXPECT_EQ(sum, 0) << "entry " << entry;
        }
        for (const auto& [firmMonth, sum] : firmMonths) {
            EXPECT_EQ(sum, 0) << "firm and month " << firmMonth;
        }
    }

    void ExpectCodesIn(const std::vector<DimensionTable>& tables) const {
        for (const DimensionTable& table : tables) {
            std::set<std::string> codes;
            for (const std::vector<std::string>& row : table.rows) {
                codes.insert(row.front());
            }
            EXPECT_THAT(used.at(table.file), testing::IsSubsetOf(codes)) << table.file;
        }
    }
};

TEST(GroupLedger, BalancesAndUsesOnlyCodesOfItsTables) {
    Books books;
    GenerateGroupLedger(committedSeed, [&](const LedgerLine& line) { books.Add(line); });
    books.ExpectBalanced();
    books.ExpectCodesIn(GroupTables());
    EXPECT_EQ(books.firmMonths.size(), 3U * 36U);
    EXPECT_LT(books.result, 0) << "the group makes a profit over the three years";
}

/// Every group lies in one group of the level above; the columns are from the widest level on.
void ExpectNested(const DimensionTable& table, const std::vector<std::size_t>& columns) {
    for (std::size_t level = 1; level < columns.size(); ++level) {
        std::map<std::string, std::set<std::string>> parents;
        for (const std::vector<std::string>& row : table.rows) {
            parents[row[columns[level]]].insert(row[columns[level - 1]]);
        }
        EXPECT_GT(parents.size(), level) << table.file;
        for (const auto& [group, above] : parents) {
            EXPECT_EQ(above.size(), 1U) << table.file << ": " << group;
        }
    }
}

TEST(WideLedger, HasTheAskedShapeAndBalances) {
    const WideLedgerShape shape{.rows = 20'000, .accounts = 50, .obsLeaves = 40, .months = 2};
    const WideLedger ledger(shape);
    Books books;
    std::uint64_t rows = 0, usual = 0;
    std::chrono::year_month_day last{};
    std::map<std::string, std::map<std::string, std::uint64_t>> numbersOfLeaf;
    ledger.Generate(5, [&](const LedgerLine& line) {
        books.Add(line);
        EXPECT_LE(last, line.date);
        last = line.date;
        ++rows;
        ++numbersOfLeaf[std::string(line.analysis.obs)][std::string(line.analysis.obsNumber)];
    });
    EXPECT_EQ(rows, shape.rows);
    books.ExpectBalanced();
    books.ExpectCodesIn(ledger.Tables());
    EXPECT_EQ(books.used["accounts.csv"].size(), 50U);
    EXPECT_EQ(books.used["obs.csv"].size(), 40U);
    for (const auto& [leaf, numbers] : numbersOfLeaf) {
        usual += std::max_element(numbers.begin(), numbers.end(), [](const auto& left, const auto& right) {
                     return left.second < right.second;
                 })->second;
    }
    EXPECT_GT(usual, rows * 85 / 100) << "a leaf's lines keep to its number";
    ExpectNested(WideLedger({}).Tables()[3], {1, 4, 7, 0}); // obs.csv: three levels of groups, and the leaf
    ExpectNested(WideLedger({}).Tables()[0], {4, 7, 10, 0});
    EXPECT_EQ(last, std::chrono::year{2020} / 2 / 29);
}

TEST(Journal, AnEntryOutOfBalanceOrWithAnUnknownAccountIsRefused) {
    std::size_t lines = 0;
    Journal journal([&](const LedgerLine&) { ++lines; });
    journal.Begin({.date = std::chrono::year{2024} / 1 / 1, .firm = "10"});
    journal.Post("2121", {}, 100);
    EXPECT_THROW(journal.End(), std::logic_error);
    EXPECT_THROW(journal.Post("9999", {}, 100), std::out_of_range);
    journal.Post("2111", {}, 0);
    journal.PostRest("4111", {});
    journal.End();
    EXPECT_EQ(lines, 2U) << "a line of no amount is left out";
    EXPECT_EQ(journal.Balance("10", "4111"), -100);
    EXPECT_EQ(journal.YearResult("10"), -100);
}

} // namespace
} // namespace qel::ledger
