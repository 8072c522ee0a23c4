#include "examples/ledger/reference/FormulaCell.h"
#include "examples/ledger/reference/LedgerDatabase.h"
#include "examples/ledger/reference/PlainSums.h"
#include "examples/ledger/reference/RandomSelections.h"
#include "qel/engine/BuildCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace qel::ledger {
namespace {

using test::TemporaryFolder;

constexpr std::uint64_t seed = 20260731;
const std::string profitAndLoss = "P";

/// The committed example as a cube file and as an SQLite database, made once for all cases.
class ValueAgreement : public testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::filesystem::path folder = std::filesystem::path(QEL_SOURCE_DIR) / "examples/ledger";
        temporary = std::make_unique<TemporaryFolder>();
        cubeFile = temporary->Path() / "ledger.cub";
        engine::BuildCube(
            {.definition = folder / "ledger.json", .output = cubeFile, .skippedLines = {}, .progress = {}});
        database = std::make_unique<SqlDatabase>();
        LoadLedger(folder, *database);
    }

    static void TearDownTestSuite() {
        database.reset();
        temporary.reset();
    }

    static std::unique_ptr<TemporaryFolder> temporary;
    static std::filesystem::path cubeFile;
    static std::unique_ptr<SqlDatabase> database;
};

std::unique_ptr<TemporaryFolder> ValueAgreement::temporary;
std::filesystem::path ValueAgreement::cubeFile;
std::unique_ptr<SqlDatabase> ValueAgreement::database;

TEST_F(ValueAgreement, RandomFormulasOfEveryShapeEqualWhatSqliteSums) {
    fmt::print("seed {}\n", seed);
    PlainSums sums(*database);
    RandomSelections selections(*database, seed);
    FormulaCell cell(cubeFile.string(), seed);
    std::map<std::size_t, int> nonZeroByShape, nonZeroByDates;
    int formulas = 0, differences = 0;
    for (int round = 0; round < 5; ++round) {
        for (std::size_t shape = 0; shape < selectionShapeCount; ++shape) {
            for (std::size_t dates = 0; dates < dateShapeCount; ++dates) {
                for (const LedgerCube cube : {LedgerCube::Months, LedgerCube::Days}) {
                    const Selection selection = selections.Draw(static_cast<SelectionShape>(shape),
                                                                static_cast<DateShape>(dates), cube);
                    const double expected = sums.CellValue(selection);
                    const double shown = cell.Value(selection);
                    EXPECT_EQ(shown, expected) << Describe(selection);
                    differences += shown == expected ? 0 : 1;
                    ASSERT_LE(differences, 20) << "enough to see what is wrong";
                    nonZeroByShape[shape] += expected != 0 ? 1 : 0;
                    nonZeroByDates[dates] += expected != 0 ? 1 : 0;
                    ++formulas;
                }
            }
        }
    }
    fmt::print("{} formulas compared, {} differences\n", formulas, differences);
    EXPECT_GE(formulas, 1000);
    for (std::size_t shape = 0; shape < selectionShapeCount; ++shape) {
        EXPECT_GE(nonZeroByShape[shape], 20) << "shape " << shape << " compares too little besides zeros";
    }
    for (const DateShape dates :
         {DateShape::WholeMonths, DateShape::UnevenDays, DateShape::OpenStart, DateShape::StartsBeforeTheCube,
          DateShape::EndsAfterTheCube, DateShape::OneDay, DateShape::Everything}) {
        EXPECT_GE(nonZeroByDates[static_cast<std::size_t>(dates)], 20) << static_cast<int>(dates);
    }
}

struct NamedCase {
    const char* what;
    LedgerCube cube;
    const char *level, *member;
};

// Members that are hard to carry through a formula and a statement.
const NamedCase namedCases[] = {
    {"under several parents", LedgerCube::Months, "Level2", "Administration"},
    {"the same leaf name under several parents", LedgerCube::Months, "Level3", "Office"},
    {"any letter case", LedgerCube::Months, "Level3", "oFFICE"},
    {"an apostrophe", LedgerCube::Months, "Level3", "Be'er Sheva"},
    {"quotes", LedgerCube::Months, "Level3", "Afula \"Big\""},
    {"brackets", LedgerCube::Months, "Level3", "Lod [A]"},
    {"an ampersand", LedgerCube::Months, "Level1", "South & Negev"},
    {"Hebrew among English", LedgerCube::Months, "Level3", "נהריה (outlet)"},
    {"Hebrew under several parents", LedgerCube::Days, "Level2", "מינהלה"},
    {"Hebrew with quotes and apostrophes", LedgerCube::Days, "Level3", "אילת, \"ללא מע''מ\""},
    {"Hebrew with brackets", LedgerCube::Days, "Level3", "טירת כרמל [ערובה]"},
    {"a cost centre with an apostrophe", LedgerCube::Months, "Cost_Centers", "44'1"},
    {"a cost centre with an ampersand", LedgerCube::Months, "Cost_Centers", "44&2"},
};

TEST_F(ValueAgreement, HardNamesEqualWhatSqliteSums) {
    PlainSums sums(*database);
    FormulaCell cell(cubeFile.string(), seed);
    for (const NamedCase& named : namedCases) {
        Selection selection;
        selection.cube = named.cube;
        selection.obsLevel = named.level;
        selection.obsMember = named.member;
        selection.plbs = profitAndLoss;
        selection.from = CalendarDay{2023, 1, 1};
        selection.to = {2025, 12, 31};
        const double expected = sums.CellValue(selection);
        const double shown = cell.Value(selection);
        EXPECT_NE(expected, 0) << named.what;
        EXPECT_EQ(shown, expected) << named.what;
    }
}

} // namespace
} // namespace qel::ledger
