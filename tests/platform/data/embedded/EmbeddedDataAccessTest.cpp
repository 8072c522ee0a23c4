#include "platform/data/embedded/EmbeddedDataAccess.h"

#include "platform/data/embedded/ProviderErrors.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/RecordsetText.h"
#include "tests/helpers/books/BooksCube.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace qel {
namespace {

using test::BuildBooks;
using test::ErrorOf;
using test::TextFor;
using ::testing::HasSubstr;

/// Reads the cubes of tests/helpers/books through the ports.
class EmbeddedDataAccessTest : public testing::Test {
protected:
    std::shared_ptr<Connection> Connect(const std::string& cube = "BooksFNC") {
        auto connection = dataAccess_.CreateConnection();
        connection->Open(TextFor(cubeFile_, cube), "", "", optionsUnspecified);
        return connection;
    }

    std::unique_ptr<CubeDef> BooksDefinition() {
        const auto catalog = dataAccess_.CreateCatalog();
        catalog->SetActiveConnection(TextFor(cubeFile_, "BooksFNC"));
        return catalog->CubeAt(0);
    }

    std::unique_ptr<Cellset> Run(const std::string& statement) {
        auto cellset = dataAccess_.CreateCellset();
        cellset->Open(statement, Connect());
        return cellset;
    }

    test::TemporaryFolder folder_;
    std::string cubeFile_ = BuildBooks(folder_.Path("books.cub"));
    EmbeddedDataAccess dataAccess_;
};

template <class Work>
std::string DescriptionOf(const Work& work) {
    const auto error = test::FailureOf(work);
    EXPECT_EQ(error.Source(), "OrmFuncQel4 cube engine");
    return error.Description();
}

TEST_F(EmbeddedDataAccessTest, AConnectionOpensAndClosesAsAdoDoes) {
    const auto connection = dataAccess_.CreateConnection();
    const auto text = TextFor(cubeFile_, "bookSFNC");
    const auto open = [&] { connection->Open(text, "", "", optionsUnspecified); };
    EXPECT_EQ(connection->State(), stateClosed);
    EXPECT_EQ(connection->ConnectionString(), "");
    EXPECT_EQ(ErrorOf([&] { connection->Close(); }), 3704);
    open();
    EXPECT_EQ(connection->State(), stateOpen);
    EXPECT_EQ(connection->ConnectionString(), text);
    EXPECT_EQ(ErrorOf(open), 3705);
    connection->Close();
    EXPECT_EQ(connection->State(), stateClosed);
    open();
    EXPECT_EQ(connection->State(), stateOpen);
}

TEST_F(EmbeddedDataAccessTest, AFailedOpeningLeavesTheConnectionClosed) {
    const auto connection = dataAccess_.CreateConnection();
    const auto open = [&](const std::string& text) { connection->Open(text, "", "", optionsUnspecified); };
    EXPECT_THAT(DescriptionOf([&] { open(TextFor(cubeFile_, "Nope")); }),
                AllOf(HasSubstr("Nope"), HasSubstr("BooksFNC")));
    EXPECT_THAT(DescriptionOf([&] { open(TextFor(cubeFile_, "")); }), HasSubstr("'BooksFNC', 'FlatFNC'"));
    EXPECT_THAT(DescriptionOf([&] { open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + cubeFile_); }),
                HasSubstr("Microsoft.Jet.OLEDB.4.0"));
    EXPECT_EQ(connection->State(), stateClosed);
}

TEST_F(EmbeddedDataAccessTest, AConnectionWithoutACatalogListsTheCubesOfTheFile) {
    const auto connection = dataAccess_.CreateConnection();
    EXPECT_EQ(ErrorOf([&] { connection->OpenSchema(schemaCatalogs); }), 3704);
    connection->Open("Provider=MSOLAP;Data Source=" + cubeFile_ +
                         ";Client Cache Size=25;Auto Synch Period=10000",
                     "", "", optionsUnspecified);
    EXPECT_EQ(connection->DefaultDatabase(), "BooksFNC") << "the first cube of the file";

    const auto rows = connection->OpenSchema(schemaCatalogs);
    EXPECT_EQ(rows->FieldValueNamed("catalog_name").As<std::string>(), "BooksFNC");
    EXPECT_EQ(test::TextOf(*rows), "CATALOG_NAME\nBooksFNC\nFlatFNC");
    rows->MoveFirst();
    EXPECT_EQ(ErrorOf([&] { rows->FieldValueNamed("CUBE_NAME"); }), 3265);
    EXPECT_EQ(ErrorOf([&] { connection->OpenSchema(20); }), 3251);

    EXPECT_EQ(Connect("flatfnc")->DefaultDatabase(), "FlatFNC") << "the named cube, as the file writes it";
}

TEST_F(EmbeddedDataAccessTest, TheCatalogHasTheShapeThatAdomdGives) {
    const auto cube = BooksDefinition();
    EXPECT_EQ(cube->Name(), "BooksFNC");
    ASSERT_EQ(cube->DimensionCount(), 9);
    EXPECT_EQ(cube->DimensionAt(0)->Name(), "Measures");
    EXPECT_EQ(cube->DimensionAt(1)->Name(), "Date");

    const auto hierarchy = cube->DimensionNamed("aCTx")->HierarchyAt(0);
    EXPECT_EQ(hierarchy->UniqueName(), "[ActX].[OBSx]");
    ASSERT_EQ(hierarchy->LevelCount(), 3);
    EXPECT_EQ(hierarchy->LevelAt(2)->Name(), "Number");

    const auto months = cube->DimensionNamed("Date")->HierarchyAt(0)->LevelNamed("MONTH");
    ASSERT_EQ(months->MemberCount(), 4);
    const auto march = months->MemberAt(2);
    EXPECT_EQ(march->Name(), "3");
    EXPECT_EQ(march->Parent()->Parent()->Name(), "2024");
    EXPECT_EQ(march->Parent()->Parent()->Parent()->Parent(), nullptr);

    const auto accounts = cube->DimensionNamed("Accounts");
    EXPECT_EQ(accounts->HierarchyCount(), 2);
    const auto sales = accounts->HierarchyAt(0)->LevelAt(1)->MemberAt(0);
    EXPECT_EQ(sales->Name() + " " + sales->Caption() + " " + sales->UniqueName(),
              "4000 Sales [Accounts].[AccountCodes].[All].[4000]");
}

TEST_F(EmbeddedDataAccessTest, MeasuresAreADimensionWithOneLevel) {
    const auto dimension = BooksDefinition()->DimensionNamed("measures");
    ASSERT_EQ(dimension->HierarchyCount(), 1);
    const auto hierarchy = dimension->HierarchyAt(0);
    ASSERT_EQ(hierarchy->LevelCount(), 1);
    const auto level = hierarchy->LevelNamed("MeasuresLevel");
    ASSERT_EQ(level->MemberCount(), 2);
    EXPECT_EQ(level->MemberAt(1)->UniqueName(), "[Measures].[Lines]");
    EXPECT_EQ(level->MemberAt(1)->Parent(), nullptr);
    EXPECT_EQ(level->MembersNamed("AMOUNT").size(), 1U);
}

TEST_F(EmbeddedDataAccessTest, MembersOfOneNameComeFromTheLevelAloneInOrder) {
    const auto hierarchy = BooksDefinition()->DimensionNamed("OBS")->HierarchyAt(0);
    const auto found = hierarchy->LevelNamed("Level2")->MembersNamed("MAIN");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0]->UniqueName(), "[OBS].[All].[North].[Main]");
    EXPECT_EQ(found[1]->UniqueName(), "[OBS].[All].[South].[Main]");
    EXPECT_TRUE(hierarchy->LevelNamed("Level1")->MembersNamed("Main").empty());
    EXPECT_EQ(hierarchy->LevelNamed("Level2")->MembersNamed("say \"]\" & GO").size(), 1U);
}

TEST_F(EmbeddedDataAccessTest, WhatTheMetadataLacksIsAnError) {
    const auto cube = BooksDefinition();
    const auto hierarchy = cube->DimensionNamed("OBS")->HierarchyAt(0);
    EXPECT_EQ(ErrorOf([&] { cube->DimensionNamed("Nope"); }), 3265);
    EXPECT_EQ(ErrorOf([&] { hierarchy->LevelNamed("Level9"); }), 3265);
    EXPECT_EQ(ErrorOf([&] { cube->DimensionAt(9); }), ErrorNumber::SubscriptOutOfRange);
    EXPECT_EQ(ErrorOf([&] { hierarchy->LevelAt(-1); }), ErrorNumber::SubscriptOutOfRange);
    EXPECT_EQ(ErrorOf([&] { hierarchy->LevelAt(1)->MemberAt(2); }), ErrorNumber::SubscriptOutOfRange);
    EXPECT_EQ(ErrorOf([&] { dataAccess_.CreateCatalog()->CubeAt(0); }), 3709);
}

TEST_F(EmbeddedDataAccessTest, ACellsetGivesMembersAndCells) {
    const auto cellset = Run("SELECT {[Measures].[Amount],[Measures].[Lines]} ON COLUMNS, "
                             "{[Accounts].[AccountCodes].[5100],[Accounts].[AccountCodes].[4000]} ON ROWS "
                             "FROM BooksFNC WHERE ([Cost_Centers].[All].[300])");
    ASSERT_EQ(cellset->AxisCount(), 2);
    EXPECT_EQ(cellset->PositionCount(1), 2);
    EXPECT_EQ(cellset->MemberCount(1, 0), 1);
    const auto member = cellset->MemberAt(1, 0, 0);
    EXPECT_EQ(member.uniqueName, "[Accounts].[AccountCodes].[All].[5100]");
    EXPECT_EQ(member.caption, "Rent");
    EXPECT_EQ(member.levelName, "AccountCode");
    EXPECT_EQ(member.levelDepth, 1);
    EXPECT_EQ(cellset->Value({0, 0}).As<double>(), 0.3);
    EXPECT_TRUE(cellset->Value({0, 1}).Is<Null>());
    for (const auto& outside :
         std::vector<std::vector<std::int32_t>>{{2, 0}, {0, 2}, {0, -1}, {0}, {0, 0, 0}}) {
        EXPECT_EQ(ErrorOf([&] { cellset->Value(outside); }), ErrorNumber::SubscriptOutOfRange);
    }
    EXPECT_EQ(ErrorOf([&] { cellset->MemberAt(1, 2, 0); }), ErrorNumber::SubscriptOutOfRange);
    EXPECT_EQ(ErrorOf([&] { cellset->MemberAt(0, 0, 1); }), ErrorNumber::SubscriptOutOfRange);
    cellset->Close();
    EXPECT_EQ(ErrorOf([&] { cellset->AxisCount(); }), 3704);
    EXPECT_EQ(ErrorOf([&] { cellset->Close(); }), 3704);
}

TEST_F(EmbeddedDataAccessTest, AStatementsFaultKeepsTheEnginesNumberAndText) {
    const auto number = [&](const std::string& statement) { return ErrorOf([&] { Run(statement); }); };
    EXPECT_EQ(number("SELECT {[Firma].[99]} ON 0 FROM BooksFNC"),
              ErrorNumberOf(engine::ErrorKind::UnknownMember));
    EXPECT_EQ(number("SELECT FRM BooksFNC"), ErrorNumberOf(engine::ErrorKind::SyntaxError));
    EXPECT_THAT(DescriptionOf([&] { Run("SELECT {[Firma].[99]} ON 0 FROM BooksFNC"); }), HasSubstr("99"));
    const auto cellset = dataAccess_.CreateCellset();
    EXPECT_EQ(ErrorOf([&] { cellset->Open("SELECT FROM BooksFNC", nullptr); }), 3709);
    EXPECT_EQ(ErrorOf([&] { cellset->Open("SELECT FROM BooksFNC", dataAccess_.CreateConnection()); }), 3709);
}

TEST(ProviderErrors, HaveTheDocumentedNumbers) {
    using enum engine::ErrorKind;
    const std::pair<const char*, engine::ErrorKind> kinds[] = {{"FileNotFound", FileNotFound},
                                                               {"NotACubeFile", NotACubeFile},
                                                               {"UnsupportedVersion", UnsupportedVersion},
                                                               {"DamagedFile", DamagedFile},
                                                               {"UnknownCube", UnknownCube},
                                                               {"UnknownName", UnknownName},
                                                               {"UnknownMember", UnknownMember},
                                                               {"SyntaxError", SyntaxError},
                                                               {"InvalidExpression", InvalidExpression},
                                                               {"TooLarge", TooLarge},
                                                               {"InvalidDefinition", InvalidDefinition},
                                                               {"InvalidData", InvalidData},
                                                               {"CannotWrite", CannotWrite}};
    std::ostringstream page;
    page << std::ifstream(QEL_ERRORS_PAGE).rdbuf();
    for (const auto& [name, kind] : kinds) {
        const auto number = ErrorNumberOf(kind);
        EXPECT_THAT(page.str(), HasSubstr(fmt::format("| {} | `0x{:X}` | {} |", name,
                                                      static_cast<std::uint32_t>(number), number)));
    }
}

TEST_F(EmbeddedDataAccessTest, ObjectsOutliveWhatTheyCameFrom) {
    std::unique_ptr<Member> member;
    {
        EmbeddedDataAccess own;
        const auto catalog = own.CreateCatalog();
        catalog->SetActiveConnection(Connect());
        member = catalog->CubeAt(0)->DimensionNamed("Firma")->HierarchyAt(0)->LevelAt(1)->MemberAt(1);
    }
    std::filesystem::remove(cubeFile_);
    EXPECT_EQ(member->UniqueName(), "[Firma].[All].[20]");
}

} // namespace
} // namespace qel
