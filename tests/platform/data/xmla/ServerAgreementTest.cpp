#include "cube/MemberListing.h"
#include "cube/MemberName.h"
#include "examples/ledger/reference/FormulaCell.h"
#include "examples/ledger/reference/LedgerDatabase.h"
#include "examples/ledger/reference/RandomSelections.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/RecordsetText.h"
#include "tests/platform/data/xmla/ServedLedger.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>

namespace qel::ledger {
namespace {

using namespace ModSetCube;
using test::ServedLedger;

constexpr std::uint64_t seed = 20260807;
/// Detects differences of a cent and of a thousandth; a server's rounding errors are far smaller.
constexpr double leastDifference = 0.0005;

TEST(ServerAgreement, RandomFormulasOfEveryShapeEqualTheEmbeddedEngine) {
    ServedLedger ledger;
    SqlDatabase database;
    LoadLedger(std::string(QEL_SOURCE_DIR) + "/examples/ledger", database);
    RandomSelections selections(database, seed);
    // The same seed, so that both write each formula's arguments in the same way.
    FormulaCell local(ledger.cubeFile, seed), served(ledger.server, seed, ledger.servers);
    int formulas = 0, differences = 0, nonZero = 0;
    for (int round = 0; round < 8; ++round) {
        for (std::size_t shape = 0; shape < selectionShapeCount; ++shape) {
            for (std::size_t dates = 0; dates < dateShapeCount; ++dates) {
                for (const LedgerCube cube : {LedgerCube::Months, LedgerCube::Days}) {
                    const auto selection = selections.Draw(static_cast<SelectionShape>(shape),
                                                           static_cast<DateShape>(dates), cube);
                    const double expected = local.Value(selection), shown = served.Value(selection);
                    const bool isSame = std::abs(expected - shown) < leastDifference;
                    EXPECT_TRUE(isSame) << shown << " instead of " << expected << ": " << Describe(selection);
                    differences += isSame ? 0 : 1;
                    ASSERT_LE(differences, 20) << "enough to see what is wrong";
                    nonZero += expected != 0 ? 1 : 0;
                    ++formulas;
                }
            }
        }
    }
    fmt::print("{} formulas compared, {} of them not 0, {} differences\n", formulas, nonZero, differences);
    EXPECT_GE(formulas, 2000);
    EXPECT_GE(nonZero, 1000);
}

/// The members of the rows, which is what callers of a listing read.
std::string RowsOf(const Cellset& cellset) {
    constexpr std::int32_t rows = 1;
    std::string text;
    for (std::int32_t row = 0; row < cellset.PositionCount(rows); ++row) {
        for (std::int32_t i = 0; i < cellset.MemberCount(rows, row); ++i) {
            const CellsetMember member = cellset.MemberAt(rows, row, i);
            text += fmt::format("{} ({}, {} {}) ", member.name, member.caption.value_or("Null"),
                                member.levelName, member.levelDepth);
        }
        text += "\n";
    }
    return text;
}

/// The rows, or "fails": each provider words its errors differently.
template <class List>
std::string RowsOrFailure(const List& list) {
    try {
        return list();
    } catch (const AutomationError&) {
        return "fails";
    }
}

const ListedMembers listings[] = {
    AccountsListing{"All", "OBS"},
    AccountsListing{"20", "OBS"},
    AccountCodesListing{"20", "OBS"},
    ObsListing{"OBS", "Level1"},
    ObsListing{"OBS", "level2"},
    ObsListing{"OBS", "LEVEL3", "3"},
    ObsListing{"Segments", "Cost", "1"},
    ObsListing{},
    ActivitiesListing{"OBS", "2"},
    ActivitiesListing{"Segments"},
    ActivitiesListing{"nothing of that name"},
    SummaryLevelListing{SummaryLevelListing::By::Code, "SuperSum1", "All", "OBS"},
    SummaryLevelListing{SummaryLevelListing::By::Code, "SuperSum3", "10", "OBS"},
    SummaryLevelListing{SummaryLevelListing::By::Name, "SuperSum2Name", "All", "OBS"},
    SummaryGroupsListing{"SuperSum1", "All"},
    SummaryGroupsListing{"SuperSum3"},
    SummaryGroupsListing{"SuperSum2", "10"},
    SummaryGroupsOfObsListing{"SuperSum3", "10", "OBS"},
};

const char* const cubeNames[] = {"LedgerFNC", "LedgerHebrewFNC"};

TEST(ServerAgreement, ListingsHaveTheMembersAndRowsOfTheEmbeddedEngine) {
    ServedLedger ledger;
    for (const char* cubeName : cubeNames) {
        for (const ListedMembers& listed : listings) {
            const MemberListing listing{cubeName, listed};
            const auto members = [&](DataAccess& provider, const std::string& source) {
                return RowsOrFailure(
                    [&] { return RowsOf(*ModSetCube::ListMembersCellset(provider, source, listing)); });
            };
            const auto rows = [&](DataAccess& provider, const std::string& source) {
                return RowsOrFailure([&] {
                    ModSetCube::ThreadState thread;
                    ModSetCube::OpenedCube opened;
                    const auto recordset = provider.CreateRecordset();
                    ModSetCube::OpenMemberRecordset(thread, provider, opened, *recordset, source, listing);
                    return test::TextOf(*recordset, true);
                });
            };
            EXPECT_EQ(members(ledger.servers, ledger.server), members(ledger.embedded, ledger.cubeFile))
                << ComposeListing(listing);
            EXPECT_EQ(rows(ledger.servers, ledger.server), rows(ledger.embedded, ledger.cubeFile))
                << ComposeListing(listing);
        }
    }
}

TEST(ServerAgreement, CountsTheSameObsLevels) {
    ServedLedger ledger;
    for (const char* cubeName : cubeNames) {
        for (const auto& [number, member] :
             {std::pair("OBS", "1"), std::pair("OBS", "2"), std::pair("Segments", "2")}) {
            EXPECT_EQ(ModSetCube::CountObsLevels(ledger.servers, cubeName, ledger.server, number, member),
                      ModSetCube::CountObsLevels(ledger.embedded, cubeName, ledger.cubeFile, number, member))
                << cubeName << " " << number << " " << member;
        }
    }
}

TEST(ServerAgreement, NamesOfEverySummaryGroupAreTheSame) {
    ServedLedger ledger;
    SqlDatabase database;
    LoadLedger(std::string(QEL_SOURCE_DIR) + "/examples/ledger", database);
    const Locale locale;
    ModSetCube::ThreadState localThread, servedThread;
    OrmQelFunction local({localThread, ledger.embedded, locale}),
        served({servedThread, ledger.servers, locale});
    int names = 0;
    for (const char* cubeName : cubeNames) {
        for (int level = 1; level <= 3; ++level) {
            auto groups = database.Prepare(fmt::format("SELECT DISTINCT group{} FROM accounts", level));
            while (groups.Step()) {
                const auto nameFrom = [&](OrmQelFunction& object, const std::string& source) {
                    const NameCall call{source, cubeName, fmt::format("SuperSum{}", level), groups.Text(0)};
                    return object.RetQelName(call).value.As<std::string>();
                };
                const std::string expected = nameFrom(local, ledger.cubeFile);
                EXPECT_EQ(nameFrom(served, ledger.server), expected)
                    << cubeName << " " << level << " " << groups.Text(0);
                names += expected != "-" ? 1 : 0; // a group without facts has no name
            }
        }
    }
    EXPECT_GE(names, 100);
}

} // namespace
} // namespace qel::ledger
