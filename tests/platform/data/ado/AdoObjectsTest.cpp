// The machine's data-access objects return what the embedded engine returns.

#include "cube/MemberListing.h"
#include "platform/data/ado/AdoDataAccess.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/RecordsetText.h"
#include "tests/platform/data/ado/ProviderDoubles.h"
#include "tests/server/LedgerCall.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace qel::test {
namespace {

using ModSetCube::MemberListing;
using testing::ElementsAre;
using testing::HasSubstr;

const char* const ledger = "double.cub";

std::string TextFor(const std::string& file, const std::string& catalog = "LedgerFNC") {
    return fmt::format("Provider=MSOLAP;Data Source={};Initial Catalog={};Client Cache Size=25;Auto Synch "
                       "Period=10000",
                       file, catalog);
}

class AdoObjects : public testing::Test {
protected:
    std::shared_ptr<Connection> Connect(const std::string& text = TextFor(ledger)) {
        auto connection = machine_.CreateConnection();
        connection->Open(text, "", "", optionsUnspecified);
        return connection;
    }

    const Apartment apartment_;
    ProviderDoubles doubles_;
    windows::AdoDataAccess machine_;
    EmbeddedDataAccess engine_;
};

TEST_F(AdoObjects, ARecordsetHasTheSameRows) {
    const MemberListing listings[] = {
        {"LedgerFNC", ModSetCube::AccountsListing{"All", "OBS"}},
        {"LedgerFNC", ModSetCube::ObsListing{"OBS", "Level2"}},
        {"LedgerHebrewFNC", ModSetCube::AccountCodesListing{"", "OBS"}},
    };
    for (const MemberListing& listing : listings) {
        const auto table = [&](DataAccess& provider, const std::string& file) {
            ModSetCube::ThreadState thread;
            ModSetCube::OpenedCube opened;
            const auto rows = provider.CreateRecordset();
            ModSetCube::OpenMemberRecordset(thread, provider, opened, *rows, file, listing);
            return TextOf(*rows);
        };
        const std::string expected = table(engine_, QEL_TEST_CUBE);
        EXPECT_GT(expected.size(), 200U) << ComposeListing(listing);
        EXPECT_EQ(table(machine_, ledger), expected) << ComposeListing(listing);
        EXPECT_THAT(doubles_.Log().recordsets.back(), HasSubstr("FROM " + listing.cubeName));
        EXPECT_THAT(doubles_.Log().recordsets.back(), testing::EndsWith("|-1|-1|-1"));
    }
    EXPECT_EQ(ModSetCube::CountObsLevels(machine_, "LedgerFNC", ledger, "OBS", "1"),
              ModSetCube::CountObsLevels(engine_, "LedgerFNC", QEL_TEST_CUBE, "OBS", "1"));
}

TEST_F(AdoObjects, ARecordsetIsReadByNameAndFailsAsTheProviderDoes) {
    const auto rows = machine_.CreateRecordset();
    EXPECT_EQ(ErrorOf([&] { rows->MoveFirst(); }), 3704) << "not open";
    rows->Open("SELECT {[Measures].[Amount]} ON COLUMNS, {[Firma].Members} ON ROWS FROM LedgerFNC", Connect(),
               -1, -1, -1);
    EXPECT_EQ(ErrorOf([&] { rows->FieldValueNamed("no such field"); }), 3265);
    EXPECT_EQ(ErrorOf([&] { rows->FieldValue(99); }), 3265);
    rows->MoveNext(); // behind the member of all
    const std::string firm = rows->FieldName(0);
    EXPECT_THAT(firm, HasSubstr("MEMBER_CAPTION"));
    EXPECT_EQ(rows->FieldValueNamed(firm).As<std::string>(), rows->FieldValue(0).As<std::string>());
    while (!rows->AtEnd()) {
        rows->MoveNext();
    }
    EXPECT_EQ(ErrorOf([&] { rows->FieldValue(0); }), 3021);
    rows->Close();
    EXPECT_EQ(doubles_.Log().recordsetsClosed, 1);
}

TEST_F(AdoObjects, AConnectionTellsWhatItReaches) {
    const auto connection = machine_.CreateConnection();
    EXPECT_EQ(connection->State(), stateClosed);
    const std::string withoutCatalog =
        "Provider=MSOLAP;Data Source=double.cub;Client Cache Size=25;Auto Synch "
        "Period=10000";
    connection->Open(withoutCatalog, "", "", optionsUnspecified);
    EXPECT_THAT(doubles_.Log().opened, ElementsAre(withoutCatalog + "|||-1"));
    EXPECT_EQ(connection->State(), stateOpen);
    EXPECT_EQ(connection->Provider(), "MSOLAP");
    EXPECT_EQ(connection->DefaultDatabase(), "LedgerFNC");
    EXPECT_EQ(connection->ConnectionString(), withoutCatalog);

    const auto catalogs = connection->OpenSchema(schemaCatalogs);
    std::vector<std::string> names;
    for (; !catalogs->AtEnd(); catalogs->MoveNext()) {
        names.push_back(catalogs->FieldValueNamed("CATALOG_NAME").As<std::string>());
    }
    EXPECT_THAT(names, ElementsAre("LedgerFNC", "LedgerHebrewFNC"));
    EXPECT_EQ(ErrorOf([&] { connection->OpenSchema(20); }), 3251);

    connection->Close();
    EXPECT_EQ(connection->State(), stateClosed);
    EXPECT_EQ(ErrorOf([&] { connection->OpenSchema(schemaCatalogs); }), 3704);
}

std::string Outline(const Member& member) {
    const auto parent = member.Parent();
    return fmt::format("{}/{}/{} under {}", member.Name(), member.Caption(), member.UniqueName(),
                       parent ? parent->UniqueName() : "nothing");
}

/// All names and captions of a cube's metadata, and the first and last member of each level.
std::string Outline(const CubeDef& cube) {
    std::string text = cube.Name();
    for (std::int32_t d = 0; d < cube.DimensionCount(); ++d) {
        const auto dimension = cube.DimensionAt(d);
        text += fmt::format("\n{}/{}", dimension->Name(), dimension->Caption());
        for (std::int32_t h = 0; h < dimension->HierarchyCount(); ++h) {
            const auto hierarchy = dimension->HierarchyAt(h);
            text +=
                fmt::format("\n  {}/{}/{}", hierarchy->Name(), hierarchy->Caption(), hierarchy->UniqueName());
            for (std::int32_t l = 0; l < hierarchy->LevelCount(); ++l) {
                const auto level = hierarchy->LevelAt(l);
                const std::int32_t count = level->MemberCount();
                text += fmt::format("\n    {}/{} {}: {} to {}", level->Name(), level->Caption(), count,
                                    Outline(*level->MemberAt(0)), Outline(*level->MemberAt(count - 1)));
            }
        }
    }
    return text;
}

TEST_F(AdoObjects, ACatalogHasTheSameMetadata) {
    for (const char* cube : {"LedgerFNC", "LedgerHebrewFNC"}) {
        const auto outline = [&](DataAccess& provider, const std::string& file) {
            const auto catalog = provider.CreateCatalog();
            catalog->SetActiveConnection(TextFor(file, cube));
            return Outline(*catalog->CubeAt(0));
        };
        EXPECT_EQ(outline(machine_, ledger), outline(engine_, QEL_TEST_CUBE)) << cube;
    }
    const auto catalog = machine_.CreateCatalog();
    catalog->SetActiveConnection(Connect());
    EXPECT_EQ(catalog->CubeCount(), 1);
    EXPECT_EQ(ErrorOf([&] { catalog->CubeAt(0)->DimensionNamed("Nope"); }), 3265);
    EXPECT_EQ(catalog->CubeAt(0)->DimensionNamed("obs")->HierarchyAt(0)->LevelNamed("level1")->Name(),
              "Level1");
}

TEST_F(AdoObjects, ACellsetHasTheSameAxes) {
    const MemberListing listing{"LedgerFNC", ModSetCube::SummaryGroupsListing{"SuperSum2", "All"}};
    const auto outline = [&](DataAccess& provider, const std::string& file) {
        const auto cells = ModSetCube::ListMembersCellset(provider, file, listing);
        std::string text = fmt::format("{} axes", cells->AxisCount());
        for (std::int32_t position = 0; position < cells->PositionCount(1); ++position) {
            for (std::int32_t index = 0; index < cells->MemberCount(1, position); ++index) {
                const CellsetMember member = cells->MemberAt(1, position, index);
                text += fmt::format("\n{}/{}/{}/{}/{}", member.name, member.caption.value_or("Null"),
                                    member.uniqueName, member.levelName, member.levelDepth);
            }
            text += ToText(cells->Value({0, position}), {});
        }
        return text;
    };
    const std::string expected = outline(engine_, QEL_TEST_CUBE);
    EXPECT_GT(expected.size(), 500U);
    EXPECT_EQ(outline(machine_, ledger), expected);
}

TEST_F(AdoObjects, RefuseConnectionsThatAreNotTheirs) {
    const auto foreign = engine_.CreateConnection();
    EXPECT_EQ(ErrorOf([&] { machine_.CreateCellset()->Open("SELECT FROM x", foreign); }), 3709);
    EXPECT_EQ(ErrorOf([&] { machine_.CreateRecordset()->Open("SELECT FROM x", nullptr, -1, -1, -1); }), 3709);
    EXPECT_EQ(ErrorOf([&] { machine_.CreateCatalog()->SetActiveConnection(foreign); }), 3709);
}

} // namespace
} // namespace qel::test
