#include "cube/ValueStatement.h"
#include "examples/ledger/reference/FormulaCell.h"
#include "examples/ledger/reference/LedgerDatabase.h"
#include "examples/ledger/reference/PlainSums.h"
#include "examples/ledger/reference/RandomSelections.h"
#include "qel/engine/BuildCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

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

/// Calls with ordinary and hard arguments, one of each list at random.
class RandomCalls {
public:
    explicit RandomCalls(std::string cubeFile) : cubeFile_(std::move(cubeFile)) {}

    ValueCall Next() {
        using Texts = std::vector<const char*>;
        ValueCall call;
        call.cubeFile = cubeFile_;
        call.CubeName = OneOf(Texts{"LedgerFNC", "LedgerFNC", "LedgerFNC", "ledgerfnc", "LedgerHebrewFNC"});
        call.ObsName = Key(Texts{"OBS", "OBS", "OBS", " obs ", "No", "O]S", ""});
        call.ObsNum = Key(Texts{"1", "2", "#", "#", "#", "9", "", "1]"});
        call.ObsLevel = Key(Texts{"All", "Level1", "Level2", "Level3", "level3", "Cost_Centers", "No", ""});
        call.ObsMember =
            Key(Texts{"North", "Haifa", "Office", "Administration", "Be'er Sheva", "2310", "44'1", "44&2",
                      "Lod [A]", "Afula \u00A0Big\u00A0", "נהריה (outlet)", "מינהלה", "Sel", "", "No"});
        call.ActivityList = Key(Texts{"All", "All", "901", " 902", "9'1", "]", ""});
        call.Summary_Group = OneOf(Texts{"All", "All", "SuperSum1", "SuperSum2", "SuperSum3", " All", "No"});
        call.Seif_level = OneOf(Texts{"1", "11", "111", "", "x]"});
        call.Accounts =
            OneOf(Texts{"All", "All", "", "1114", " 6111 ", "6'11", "[6111]", "6111].[1", "&[6111]"});
        call.Measure =
            OneOf(Texts{"Amount", "Amount", " amount", "Quantity", "A'mount", "Amount]", "", "No"});
        call.MoneySet = OneOf(Texts{"All", "ILS", "usd", "No"});
        call.Plbs = OneOf(Texts{"All", "P", "B", "DateSel"});
        call.RH = OneOf(Texts{"", "R", "H"});
        call.Firma = OneOf(Texts{"All", "10", "20", "99"});
        call.Opening_Balance = OneOf(Texts{"All", "0", "1"});
        call.From_Date = DateFromDay({2022 + Below(5), 1 + Below(12), 1 + Below(28)});
        call.To_Date = DateFromDay({2022 + Below(5), 1 + Below(12), 1 + Below(28)});
        return call;
    }

private:
    int Below(std::size_t end) { return static_cast<int>(random_.Below(end)); }
    /// The first one in most cases, so that most calls have few odd arguments.
    std::string OneOf(const std::vector<const char*>& texts) {
        const auto place = static_cast<std::size_t>(Below(texts.size() * 5));
        return texts[place < texts.size() ? place : 0];
    }
    Variant Key(const std::vector<const char*>& texts) {
        const std::string text = OneOf(texts);
        return Variant::List({Variant(text == "#" ? std::string(1, '\0') : text)});
    }

    std::string cubeFile_;
    Random random_{seed};
};

/// All that a call shows and hides.
std::string Told(const FormulaResult& result) {
    const Variant& value = result.value;
    const auto shown = value.Is<double>() ? value.As<double>() : value.As<std::int16_t>();
    const auto& failure = result.failure;
    return fmt::format("{} {} reached {} masked '{}' failed {} '{}'", value.TypeName(), shown,
                       static_cast<int>(result.reached), result.masked, failure ? failure->Number() : 0,
                       failure ? failure->Description() : "");
}

TEST_F(ValueAgreement, CellsThatAreKnownOrPreparedTellWhatTheirStatementsTell) {
    struct Listener : DataObserver { // who listens has every cell read by its statement
        void OnOpening(const std::string& /*text*/, std::chrono::nanoseconds /*time*/) override {}
        void OnStatement(const std::string& /*text*/) override {}
    } listener;
    EmbeddedDataAccess embedded;
    Providers listening(embedded);
    listening.observer = &listener;
    const Locale locale;
    ModSetCube::ThreadState plainState, directState;
    OrmQelFunction plain({plainState, listening, locale}), direct({directState, embedded, locale});
    RandomCalls calls(cubeFile.string());
    int prepared = 0, nonZero = 0;
    for (int i = 0; i < 4000; ++i) {
        const ValueCall call = calls.Next();
        const std::string expected = Told(plain.QeLF1(call));
        for (const char* time : {"new", "known", "known again"}) {
            ASSERT_EQ(Told(direct.QeLF1(call)), expected) << time << ": " << call.Accounts << ", call " << i;
        }
        const auto query = direct.PrepareQeLF1(call).query;
        prepared += query && directState.CubeConnection->Prepare(ModSetCube::InParts(*query)) ? 1 : 0;
        nonZero += expected.starts_with("Double") ? 1 : 0;
    }
    EXPECT_GE(prepared, 700);
    EXPECT_GE(nonZero, 500);
}

TEST_F(ValueAgreement, KnownCellsNeverShowNumbersOfAFileThatWasOverwritten) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Path("a.cub");
    std::filesystem::copy_file(cubeFile, file);
    const std::string whole = folder.Read("a.cub");
    FormulaCell cell(file.string(), seed);
    Selection selection;
    selection.from = CalendarDay{2023, 1, 1};
    selection.to = {2025, 12, 31};
    selection.plbs = profitAndLoss;
    const double expected = cell.Value(selection);
    EXPECT_NE(expected, 0);
    EXPECT_EQ(cell.Value(selection), expected);
    folder.Write("a.cub", std::string(whole.size(), '\0'));
    EXPECT_EQ(cell.Value(selection), 0) << "the masked error";
    folder.Write("a.cub", whole);
    EXPECT_EQ(cell.Value(selection), expected);
    EXPECT_EQ(cell.Value(selection), expected);
    // Another file in its place, whose numbers differ: the next recalculation shows them.
    std::filesystem::copy(std::filesystem::path(QEL_SOURCE_DIR) / "examples/ledger", folder.Path(),
                          std::filesystem::copy_options::recursive);
    const std::string lines = folder.Read("ledger.csv");
    folder.Write("ledger.csv", lines.substr(0, lines.find('\n', lines.size() / 2) + 1));
    engine::BuildCube(
        {.definition = folder.Path("ledger.json"), .output = file, .skippedLines = {}, .progress = {}});
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const double fresh = FormulaCell(file.string(), seed).Value(selection);
    EXPECT_NE(fresh, expected);
    EXPECT_EQ(cell.Value(selection), fresh);
}

} // namespace
} // namespace qel::ledger
