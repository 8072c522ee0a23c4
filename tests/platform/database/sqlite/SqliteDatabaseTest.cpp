#include "platform/database/sqlite/SqliteDatabase.h"

#include "platform/database/DatabaseFile.h"
#include "store/LocalDb.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"
#ifndef _WIN32
#include "tests/helpers/FileSizeLimit.h"
#endif

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace qel {
namespace {

using test::FailureOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Reads a database with SQLite's own functions.
class Inspected {
public:
    explicit Inspected(const std::filesystem::path& path) {
        sqlite3* opened = nullptr;
        EXPECT_EQ(sqlite3_open_v2(PathToUtf8(path).c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr),
                  SQLITE_OK);
        database_.reset(opened);
    }

    /// The rows, their columns joined with blanks.
    std::vector<std::string> Rows(const std::string& query) {
        std::vector<std::string> rows;
        char* fault = nullptr;
        const auto addRow = [](void* list, int count, char** values, char** /*names*/) {
            std::string row;
            for (int i = 0; i < count; ++i) {
                row += (i == 0 ? "" : " ") + std::string(values[i] ? values[i] : "NULL");
            }
            static_cast<std::vector<std::string>*>(list)->push_back(row);
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database_.get(), query.c_str(), addRow, &rows, &fault), SQLITE_OK)
            << query << ": " << fault;
        sqlite3_free(fault);
        return rows;
    }

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
};

struct SqliteDatabaseTest : ::testing::Test {
    SqliteDatabaseTest() {
        store.separator = '/';
        bench.SuiteKey()["MDBPath"] = {registryString, PathToUtf8(folder.Path("מסד 'נתונים'"))};
        std::filesystem::create_directory(folder.Path("מסד 'נתונים'"));
    }
    std::filesystem::path File() const { return folder.Path("מסד 'נתונים'/QelFunction17.mdb"); }
    /// What CreateLocalDb reported; empty when it reported nothing.
    std::string Create() {
        bench.messages.shown.clear();
        CreateLocalDb(store);
        return bench.messages.shown.empty() ? "" : bench.messages.shown[0].text;
    }

    const test::TemporaryFolder folder;
    test::StoreBench bench;
    SqliteDatabase& sqlite = bench.database;
    StoreEnvironment& store = bench.store;
};

TEST_F(SqliteDatabaseTest, MakesTheTwoTables) {
    EXPECT_EQ(LocalDbConnectionText(store),
              "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + PathToUtf8(File()));
    ASSERT_EQ(Create(), "");
    Inspected database(File());
    EXPECT_THAT(database.Rows("SELECT type, name FROM sqlite_master ORDER BY rowid"),
                ElementsAre("table DataTbl", "table QelName"));
    const std::string columns = "SELECT name, type FROM pragma_table_info";
    EXPECT_THAT(database.Rows(columns + "('DataTbl')"),
                ElementsAre("CubeFile TEXT", "CubeName TEXT", "ObsName TEXT", "ObsNum TEXT", "ObsLevel TEXT",
                            "ObsMember TEXT", "ActivityList TEXT", "SumeryLevel TEXT", "SumeryMember TEXT",
                            "AccountList TEXT", "Measure TEXT", "MoneySet TEXT", "Plbs TEXT", "Rh TEXT",
                            "Firma TEXT", "OpeningBalance TEXT", "FromDate DATE", "ToDate DATE"));
    EXPECT_THAT(database.Rows(columns + "('QelName')"),
                ElementsAre("CubeFile TEXT", "CubeName TEXT", "DimName TEXT", "LevelNum TEXT",
                            "DataMember TEXT", "Firma TEXT", "Obs TEXT"));
    EXPECT_THAT(database.Rows("SELECT DISTINCT \"notnull\", dflt_value, pk FROM pragma_table_info('DataTbl') "
                              "UNION SELECT \"notnull\", dflt_value, pk FROM pragma_table_info('QelName')"),
                ElementsAre("0 NULL 0"));
    EXPECT_THAT(database.Rows("SELECT (SELECT count(*) FROM DataTbl), (SELECT count(*) FROM QelName)"),
                ElementsAre("0 0"));
    EXPECT_THAT(database.Rows("PRAGMA integrity_check"), ElementsAre("ok"));
    EXPECT_EQ(IdentifyDatabaseFile(File()), DatabaseFileKind::Sqlite);
}

TEST_F(SqliteDatabaseTest, LeavesAFileThatExistsAsItIs) {
    const auto jet = [](const char* name) {
        return std::string("\0\1\0\0", 4) + name + std::string(4096, '\0');
    };
    const struct {
        const char* what;
        std::string bytes, fault;
        DatabaseFileKind kind;
    } cases[] = {
        {"Jet's", jet("Standard Jet DB"), "was made by Microsoft Jet", DatabaseFileKind::Jet},
        {"its successor's", jet("Standard ACE DB"), "was made by Microsoft Jet", DatabaseFileKind::Jet},
        {"text", "Standard Jet DB", "is not a database", DatabaseFileKind::Other},
        {"half a signature", std::string("\0\1\0\0Standard", 12), "is not a database",
         DatabaseFileKind::Other},
        {"nothing", "", "is not a database", DatabaseFileKind::Other},
    };
    const std::string name = "מסד 'נתונים'/QelFunction17.mdb";
    for (const auto& c : cases) {
        folder.Write(name, c.bytes);
        const auto report = Create();
        EXPECT_THAT(report, HasSubstr("Error : -2147217897\r\n")) << c.what;
        EXPECT_THAT(report, HasSubstr(c.fault)) << c.what;
        EXPECT_TRUE(folder.Read(name) == c.bytes) << c.what;
        EXPECT_EQ(IdentifyDatabaseFile(File()), c.kind) << c.what;
    }
    std::filesystem::remove(File());
    ASSERT_EQ(Create(), "");
    Inspected(File()).Rows("INSERT INTO QelName (CubeFile) VALUES ('a.cub')");
    EXPECT_THAT(Create(), HasSubstr("already exists.\r\n"));
    EXPECT_THAT(Inspected(File()).Rows("SELECT CubeFile FROM QelName"), ElementsAre("a.cub"));
}

TEST_F(SqliteDatabaseTest, ReportsWhatCannotBeMade) {
    bench.SuiteKey()["MDBPath"].data = PathToUtf8(folder.Path("missing/deep"));
    CreateLocalDb(store);
    ASSERT_EQ(bench.messages.shown.size(), 2U) << "the folder, then the database";
    EXPECT_THAT(bench.messages.shown[0].text, HasSubstr("Path not found"));
    EXPECT_THAT(bench.messages.shown[1].text, HasSubstr("missing/deep/QelFunction17.mdb' cannot be created"));
    EXPECT_EQ(IdentifyDatabaseFile(folder.Path("missing/deep/x")), DatabaseFileKind::Missing);
    EXPECT_EQ(IdentifyDatabaseFile(folder.Path()), DatabaseFileKind::Unreadable);
}

TEST_F(SqliteDatabaseTest, ReportsADatabaseThatAnotherProgramLocks) {
    const auto catalog = sqlite.NewCatalog();
    catalog->Create("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + PathToUtf8(File()));
    Inspected other(File());
    other.Rows("BEGIN EXCLUSIVE");
    EXPECT_THAT(FailureOf([&] { catalog->AppendTable(QelNameTable()); }).Description(),
                HasSubstr("cannot be written (database is locked)"));
    other.Rows("ROLLBACK");
    catalog->AppendTable(QelNameTable());
    EXPECT_EQ(other.Rows("SELECT name FROM sqlite_master").size(), 1U);
    EXPECT_THROW(sqlite.NewCatalog()->AppendTable(QelNameTable()), AutomationError) << "never created";
    EXPECT_THROW(sqlite.NewCatalog()->Create("Provider=x"), AutomationError) << "no data source";
}

/// A row of DataTbl: its texts are all the same.
TableRow Selection(const Variant& text, const Variant& from, const Variant& to) {
    TableRow row(16, text);
    row.push_back(from);
    row.push_back(to);
    return row;
}

#ifndef _WIN32 // which has no limit to stand for a full disk
TEST_F(SqliteDatabaseTest, LeavesNoHalfDatabaseOnAFullDisk) {
    for (const rlim_t room : {100U, 4'096U, 8'192U}) { // for less than the header, for it, and for one table
        {
            const test::FileSizeLimit full(room);
            EXPECT_THAT(Create(), HasSubstr("cannot be written")) << room;
        }
        EXPECT_EQ(IdentifyDatabaseFile(File()), DatabaseFileKind::Missing) << room;
    }
    EXPECT_EQ(Create(), "") << "with room again";
}
#endif

TEST_F(SqliteDatabaseTest, KeepsRowsAsTheyWereWritten) {
    ASSERT_EQ(Create(), "");
    const AutomationDate lastDay = DateFromDay({9999, 12, 31});
    const std::vector<TableRow> rows = {
        Selection("קוביה's \"]\xC2\xA0", DateFromDay({2020, 3, 31}), AutomationDate{43921.75}),
        Selection("", Null{}, AutomationDate{}),
        Selection(Null{}, DateFromDay({100, 1, 1}), AutomationDate{-1.25}),
        Selection(std::string("a\0b", 3), lastDay, AutomationDate{lastDay.days + 0.9999999}),
    };
    OpenLocalDb(store)->ReplaceRows("DataTbl", {rows[2], rows[1]});
    OpenLocalDb(store)->ReplaceRows("DataTbl", rows);
    const auto read = OpenLocalDb(store)->ReadRows("DataTbl");
    ASSERT_EQ(read.size(), rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < rows[row].size(); ++column) {
            const Variant& written = rows[row][column];
            if (written.Is<AutomationDate>()) {
                EXPECT_NEAR(read[row][column].As<AutomationDate>().days, written.As<AutomationDate>().days,
                            2e-5)
                    << row << " " << column;
            } else {
                EXPECT_EQ(read[row][column].Get(), written.Get()) << row << " " << column;
            }
        }
    }
    EXPECT_THAT(Inspected(File()).Rows("SELECT FromDate, ToDate, typeof(ToDate) FROM DataTbl"),
                ElementsAre("2020-03-31 2020-03-31 18:00:00 text", "NULL 1899-12-30 text",
                            "0100-01-01 1899-12-29 06:00:00 text", "9999-12-31 9999-12-31 23:59:59 text"));
    EXPECT_TRUE(OpenLocalDb(store)->ReadRows("QelName").empty());
}

TEST_F(SqliteDatabaseTest, KeepsTheOldRowsWhenNewOnesCannotBeWritten) {
    ASSERT_EQ(Create(), "");
    const auto database = OpenLocalDb(store);
    const TableRow good(7, "a");
    database->ReplaceRows("QelName", {good});
    const struct {
        const char* what;
        std::string table;
        TableRow bad;
        std::int32_t number;
        const char* fault;
    } cases[] = {
        {"too few values", "QelName", TableRow(6, "b"), -2147467259, "has 7 columns but 6 values"},
        {"a table that is not there", "Qel\"Name", good, -2147467259, "no such table: Qel\"Name"},
        {"a date out of range", "QelName", TableRow(7, AutomationDate{1e9}), ErrorNumber::Overflow,
         "Overflow"},
    };
    for (const auto& c : cases) {
        const auto error = FailureOf([&] { database->ReplaceRows(c.table, {TableRow(7, "new"), c.bad}); });
        EXPECT_EQ(error.Number(), c.number) << c.what;
        EXPECT_THAT(error.Description(), HasSubstr(c.fault)) << c.what;
        EXPECT_THAT(Inspected(File()).Rows("SELECT CubeFile FROM QelName"), ElementsAre("a")) << c.what;
    }
    Inspected other(File());
    other.Rows("BEGIN EXCLUSIVE");
    EXPECT_THROW(database->ReplaceRows("QelName", {}), AutomationError) << "locked by another program";
    other.Rows("ROLLBACK");
    EXPECT_EQ(database->ReadRows("QelName").size(), 1U);
}

TEST_F(SqliteDatabaseTest, TellsWhyAFileCannotBeOpened) {
    const std::string name = "מסד 'נתונים'/QelFunction17.mdb";
    const auto faultOfOpening = [&](const std::string& table = {}) {
        return FailureOf([&] { OpenLocalDb(store)->ReadRows(table); }).Description();
    };
    EXPECT_THAT(faultOfOpening(), HasSubstr("QelFunction17.mdb' does not exist."));
    folder.Write(name, std::string("\0\1\0\0Standard Jet DB\0", 20));
    EXPECT_THAT(faultOfOpening(), HasSubstr("was made by Microsoft Jet"));
    folder.Write(name, "text");
    EXPECT_THAT(faultOfOpening(), HasSubstr("is not a database"));
    std::filesystem::remove(File());
    ASSERT_EQ(Create(), "");
    auto bytes = folder.Read(name);
    folder.Write(name, bytes.substr(0, 100) + std::string(bytes.size() - 100, '\xFF'));
    EXPECT_THAT(faultOfOpening("QelName"), HasSubstr("malformed"));
    folder.Write(name, bytes);
    Inspected(File()).Rows("INSERT INTO DataTbl (FromDate) VALUES ('yesterday')");
    EXPECT_THAT(faultOfOpening("DataTbl"),
                HasSubstr("QelFunction17.mdb' holds 'yesterday' in column FromDate"));
}

} // namespace
} // namespace qel
