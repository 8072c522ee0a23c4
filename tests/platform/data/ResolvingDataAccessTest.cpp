#include "platform/data/ResolvingDataAccess.h"

#include "platform/data/embedded/CubeSource.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/books/BooksCube.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace qel {
namespace {

using test::ErrorOf;
using test::RecordingProvider;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Lines = std::vector<std::string>;

TEST(NamesEmbeddedCube, ByWhatTheDataSourceHolds) {
    const test::TemporaryFolder folder;
    const std::string cube = test::BuildBooks(folder.Path("ספר's [1].cub"));
    std::ofstream(folder.Path("other.cub")) << "Microsoft OLAP cube, not ours";
    std::ofstream(folder.Path("empty.cub")) << "";
    const auto at = [&](const char* name) { return folder.Path(name).string(); };
    struct Case {
        const char* what;
        std::string text;
        bool isEmbedded;
    };
    const Case cases[] = {
        {"a cube", test::TextFor(cube, "BooksFNC"), true},
        {"a cube, in blanks and without a catalog", "data source = " + cube + " ", true},
        {"a cube of another provider's name", "Provider=SQLOLEDB;Data Source=" + cube, true},
        {"a file of another kind", test::TextFor(at("other.cub"), "x"), false},
        {"an empty file", test::TextFor(at("empty.cub"), "x"), false},
        {"a missing file", test::TextFor(at("missing.cub"), "x"), false},
        {"a folder", test::TextFor(folder.Path().string(), "x"), false},
        {"an address", test::TextFor("http://olap.example:8080/xmla", "x"), false},
        {"a server's name", test::TextFor("OLAP01\\SALES", "x"), false},
        {"no data source", "Provider=MSOLAP", false},
        {"a text that is none", "what is this", false},
        {"nothing", "", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(NamesEmbeddedCube(c.text), c.isEmbedded) << c.what;
    }
}

/// Two providers: "left" opens the texts that begin so, "right" all others.
class Resolving : public ::testing::Test {
protected:
    std::shared_ptr<Connection> Open(const std::string& text) {
        auto connection = objects_.CreateConnection();
        connection->Open(text, "", "", optionsUnspecified);
        return connection;
    }

    RecordingProvider left_ = test::LedgerProvider();
    RecordingProvider right_ = test::LedgerProvider();
    ResolvingDataAccess objects_{[this](const std::string& text) -> DataAccess& {
        return text.rfind("left", 0) == 0 ? left_ : right_;
    }};
};

TEST_F(Resolving, AConnectionAndAllThatIsOpenedOverItAreOneProviders) {
    right_.catalogNames = {"AFNC", "BFNC"};
    right_.defaultDatabase = "BFNC";
    const auto connection = Open("right;Initial Catalog=");
    objects_.CreateCellset()->Open("SELECT 1", connection);
    objects_.CreateRecordset()->Open("SELECT 2", connection, -1, -1, -1);
    const auto catalog = objects_.CreateCatalog();
    catalog->SetActiveConnection(connection);
    EXPECT_EQ(catalog->CubeCount(), 1);
    EXPECT_EQ(connection->DefaultDatabase(), "BFNC");
    const auto rows = connection->OpenSchema(schemaCatalogs);
    EXPECT_EQ(rows->FieldValueNamed("catalog_name").As<std::string>(), "AFNC");
    EXPECT_THAT(left_.log, IsEmpty());
    EXPECT_THAT(right_.log, ::testing::IsSupersetOf(Lines{"open right;Initial Catalog=", "statement SELECT 1",
                                                          "recordset SELECT 2", "schema 1"}));
}

TEST_F(Resolving, ACatalogIsItsTextsProvider) {
    const auto catalog = objects_.CreateCatalog();
    catalog->SetActiveConnection("left 1");
    EXPECT_THAT(left_.TakeLog(), ElementsAre("catalog left 1"));
    catalog->SetActiveConnection("other");
    EXPECT_THAT(left_.log, IsEmpty());
    EXPECT_THAT(right_.log, ElementsAre("catalog other"));
    left_.failingCatalog = 5;
    EXPECT_EQ(ErrorOf([&] { catalog->SetActiveConnection("left 2"); }), 5);
    EXPECT_EQ(catalog->CubeCount(), 1) << "the one that was there stays";
}

TEST_F(Resolving, AConnectionCanGoOverToTheOtherProvider) {
    const auto connection = Open("left");
    EXPECT_EQ(ErrorOf([&] { connection->Open("right", "", "", optionsUnspecified); }), 3705)
        << "open already";
    EXPECT_THAT(right_.log, IsEmpty());
    connection->Close();
    left_.TakeLog();
    connection->Open("right", "", "", optionsUnspecified);
    EXPECT_THAT(left_.log, ElementsAre("release")) << "the closed one is let go";
    EXPECT_THAT(right_.log, ElementsAre("new connection", "open right"));
    EXPECT_EQ(connection->ConnectionString(), "right");
}

TEST_F(Resolving, AFailedOpeningLeavesAClosedConnection) {
    left_.failingOpen = 3706;
    const auto connection = objects_.CreateConnection();
    EXPECT_EQ(ErrorOf([&] { connection->Open("left", "", "", optionsUnspecified); }), 3706);
    EXPECT_EQ(connection->State(), stateClosed);
    EXPECT_EQ(left_.log.back(), "release");
    EXPECT_EQ(ErrorOf([&] { objects_.CreateCellset()->Open("SELECT", connection); }), 3709);
    connection->Open("right", "", "", optionsUnspecified);
    EXPECT_EQ(connection->State(), stateOpen);
}

TEST_F(Resolving, NothingOfAProviderIsTouchedBeforeItIsKnown) {
    const auto connection = objects_.CreateConnection();
    const auto catalog = objects_.CreateCatalog();
    const auto cellset = objects_.CreateCellset();
    const auto recordset = objects_.CreateRecordset();
    const auto foreign = left_.CreateConnection();
    foreign->Open("left", "", "", optionsUnspecified);
    left_.TakeLog();
    struct Case {
        const char* what;
        std::function<void()> use;
        std::int32_t number;
    };
    const Case cases[] = {
        {"close a connection", [&] { connection->Close(); }, 3704},
        {"its schema", [&] { connection->OpenSchema(schemaCatalogs); }, 3704},
        {"a catalog's cubes", [&] { static_cast<void>(catalog->CubeCount()); }, 3709},
        {"a catalog over it", [&] { catalog->SetActiveConnection(connection); }, 3709},
        {"a catalog over another's connection", [&] { catalog->SetActiveConnection(foreign); }, 3709},
        {"a cellset over it", [&] { cellset->Open("SELECT", connection); }, 3709},
        {"a cellset over no connection", [&] { cellset->Open("SELECT", nullptr); }, 3709},
        {"a cellset's cells",
         [&] {
             static_cast<void>(cellset->Value({0, 0}));
         },
         3704},
        {"close a cellset", [&] { cellset->Close(); }, 3704},
        {"a recordset over another's connection", [&] { recordset->Open("SELECT", foreign, -1, -1, -1); },
         3709},
        {"a recordset's fields", [&] { static_cast<void>(recordset->FieldCount()); }, 3704},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ErrorOf(c.use), c.number) << c.what;
    }
    EXPECT_EQ(connection->State(), stateClosed);
    EXPECT_EQ(connection->Provider() + connection->DefaultDatabase() + connection->ConnectionString(), "");
    EXPECT_THAT(left_.log, IsEmpty());
    EXPECT_THAT(right_.log, IsEmpty());
}

} // namespace
} // namespace qel
