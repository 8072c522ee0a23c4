#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/RecordsetText.h"
#include "tests/helpers/books/BooksCube.h"

#include <gtest/gtest.h>

#include <functional>

namespace qel {
namespace {

using test::ErrorOf;

class EmbeddedRecordsetTest : public testing::Test {
protected:
    std::unique_ptr<Recordset> Run(const std::string& statement) {
        auto connection = dataAccess_.CreateConnection();
        connection->Open(test::TextFor(cubeFile_, "BooksFNC"), "", "", optionsUnspecified);
        auto recordset = dataAccess_.CreateRecordset();
        recordset->Open(statement, connection, -1, -1, -1);
        return recordset;
    }

    test::TemporaryFolder folder_;
    std::string cubeFile_ = test::BuildBooks(folder_.Path("books.cub"));
    EmbeddedDataAccess dataAccess_;
};

struct TableCase {
    const char* what;
    std::string statement, table;
};

const TableCase tableCases[] = {
    {"a row for every member; ancestors fill their fields, All fills none",
     "SELECT NON EMPTY {[Measures]} ON COLUMNS, NON EMPTY {[OBS].Members} ON ROWS FROM BooksFNC",
     "[OBS].[Level1].[MEMBER_CAPTION]|[OBS].[Level2].[MEMBER_CAPTION]|[Measures].[Amount]\n"
     "-|-|-929.95\n"
     "North|-|-630.25\nNorth|Karmi'el|-0.2\nNorth|Main|-630.05\n"
     "South|-|-299.7\nSouth|Main|-300\nSouth|Say \"]\" & go|0.3"},
    {"a field for every level, also when no member of the deeper ones is left",
     "SELECT NON EMPTY {[Measures]} ON COLUMNS, NON EMPTY Except([OBS].Members, [OBS].[Level2].Members) ON "
     "ROWS "
     "FROM BooksFNC",
     "[OBS].[Level1].[MEMBER_CAPTION]|[OBS].[Level2].[MEMBER_CAPTION]|[Measures].[Amount]\n"
     "-|-|-929.95\nNorth|-|-630.25\nSouth|-|-299.7"},
    {"NON EMPTY takes no field away",
     "WITH MEMBER [Measures].[Top] AS IIf([OBS].CurrentMember IS [OBS].[North], 1, NULL) "
     "SELECT {[Measures].[Top]} ON COLUMNS, NON EMPTY [OBS].Members ON ROWS FROM BooksFNC",
     "[OBS].[Level1].[MEMBER_CAPTION]|[OBS].[Level2].[MEMBER_CAPTION]|[Measures].[Top]\nNorth|-|1"},
    {"two hierarchies side by side, down to their deepest member; an empty cell is Null",
     "SELECT {[Measures].[Lines],[Measures].[Amount]} ON COLUMNS, "
     "CrossJoin({[Accounts].[AccountCodes].[AccountCode]."
     "members},{[Accounts].[AccountNames].[All]}) ON ROWS FROM BooksFNC WHERE ([Date].[2024].[Q1].[2])",
     "[Accounts].[AccountCodes].[AccountCode].[MEMBER_CAPTION]|[Measures].[Lines]|[Measures].[Amount]\n"
     "Sales|1|-500\nWages, \"regular\"|1|300.05\nRent|-|-"},
    {"a calculated member stands on its hierarchy's top level; measures may stand on rows",
     "WITH MEMBER [Measures].[Double] AS '2*[Measures].[Amount]' SELECT {[Firma].[10]} ON COLUMNS, "
     "{[Measures].[Double],[Measures].[Amount]} ON ROWS FROM BooksFNC",
     "[Measures].[MeasuresLevel].[MEMBER_CAPTION]|[Firma].[All].[10]\nDouble|-1260.5\nAmount|-630.25"},
    {"a tuple on columns", "SELECT {([Measures].[Amount],[Firma].[20])} ON COLUMNS FROM BooksFNC",
     "[Measures].[Amount].[Firma].[All].[20]\n-299.7"},
    {"a level that a mixed set reaches has its field; All and its parents leave it Null",
     "SELECT {[Measures].[Amount]} ON COLUMNS, {[OBS].[South].[Main],[OBS],[OBS].[North]} ON ROWS "
     "FROM BooksFNC",
     "[OBS].[Level1].[MEMBER_CAPTION]|[OBS].[Level2].[MEMBER_CAPTION]|[Measures].[Amount]\n"
     "South|Main|-300\n-|-|-929.95\nNorth|-|-630.25"},
    {"All alone has no field", "SELECT {[Measures].[Amount]} ON COLUMNS, {[OBS]} ON ROWS FROM BooksFNC",
     "[Measures].[Amount]\n-929.95"},
    {"no rows axis: one row, a field for every column",
     "SELECT {[Firma].[20],[Firma],[Firma].[10]} ON COLUMNS FROM BooksFNC",
     "[Firma].[All].[20]|[Firma].[All]|[Firma].[All].[10]\n-299.7|-929.95|-630.25"},
    {"no axis at all", "SELECT FROM BooksFNC", ""},
    {"no row at all",
     "SELECT {[Measures]} ON COLUMNS, NON EMPTY {[Accounts].[AccountCodes].[All].[5100]} ON ROWS "
     "FROM BooksFNC WHERE ([Date].[2024].[Q1].[2])",
     "[Measures].[Amount]"},
};

TEST_F(EmbeddedRecordsetTest, FlattensTheAnswer) {
    for (const auto& c : tableCases) {
        EXPECT_EQ(test::TextOf(*Run(c.statement)), c.table) << c.what;
    }
}

TEST_F(EmbeddedRecordsetTest, WrongUsesAreErrorsThatLeaveTheRowsAlone) {
    auto connection = dataAccess_.CreateConnection();
    connection->Open(test::TextFor(cubeFile_, "BooksFNC"), "", "", optionsUnspecified);
    const std::string statement = "SELECT {[Measures]} ON COLUMNS, {[Firma].[20]} ON ROWS FROM BooksFNC";
    const auto rows = dataAccess_.CreateRecordset();
    const auto open = [&](const std::string& text) { rows->Open(text, connection, -1, -1, -1); };
    const auto expectNumber = [](std::int32_t number, const std::vector<std::function<void()>>& uses) {
        for (std::size_t i = 0; i < uses.size(); ++i) {
            EXPECT_EQ(ErrorOf(uses[i]), number) << "use " << i;
        }
    };
    const std::vector<std::function<void()>> whenClosed = {
        [&] { rows->FieldCount(); }, [&] { rows->AtEnd(); }, [&] { rows->MoveNext(); },
        [&] { rows->MoveFirst(); }, [&] { rows->Close(); }};
    for (int round = 0; round < 2; ++round) { // a closed recordset can be opened again
        expectNumber(errorObjectClosed, whenClosed);
        expectNumber(errorNotSupported,
                     {[&] { open("SELECT {[Measures]} ON 0, {[Firma]} ON 1, {[OBS]} ON 2 FROM BooksFNC"); }});
        expectNumber(errorInvalidConnection, {[&] { rows->Open(statement, nullptr, -1, -1, -1); }});
        for (const char* text : {"", "SELECT {[OBS].[Level9].members} ON COLUMNS FROM BooksFNC"}) {
            EXPECT_NE(ErrorOf([&] { open(text); }), 0) << text;
        }
        expectNumber(errorObjectClosed, whenClosed); // a failed statement leaves it closed
        open(statement);
        expectNumber(errorItemNotFound, {[&] { rows->FieldName(-1); }, [&] { rows->FieldName(2); },
                                         [&] { rows->FieldValue(-1); }});
        expectNumber(errorObjectOpen, {[&] { open(statement); }});
        EXPECT_EQ(rows->FieldValue(0).As<std::string>(), "20");
        EXPECT_EQ(rows->FieldValue(1).As<double>(), -299.7);
        rows->MoveNext();
        EXPECT_TRUE(rows->AtEnd());
        expectNumber(errorNoCurrentRow, {[&] { rows->MoveNext(); }, [&] { rows->FieldValue(0); }});
        rows->MoveFirst();
        EXPECT_EQ(rows->FieldValue(0).As<std::string>(), "20");
        rows->Close();
    }
}

} // namespace
} // namespace qel
