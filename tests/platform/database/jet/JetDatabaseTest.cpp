#include "platform/database/jet/JetDatabase.h"

#include "platform/database/DatabaseFile.h"
#include "store/LocalDb.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"
#include "tests/platform/database/jet/JetDoubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct JetDatabaseTest : ::testing::Test {
    JetDatabaseTest() {
        std::filesystem::create_directory(folder.Path("נתונים"));
        bench.SuiteKey()["MDBPath"] = {registryString, PathToUtf8(folder.Path("נתונים"))};
    }
    std::string ConnectionText() const {
        return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + PathToUtf8(folder.Path("נתונים")) +
               "\\QelFunction17.mdb";
    }
    std::string Report() {
        const auto shown = std::exchange(bench.messages.shown, {});
        return shown.empty() ? "" : shown[0].text;
    }

    const Apartment apartment;
    JetDoubles doubles;
    const TemporaryFolder folder;
    test::StoreBench bench;
    windows::JetDatabase jet;
    StoreEnvironment store{bench.registry, bench.profiles, jet, bench.messages, ""};
};

TEST_F(JetDatabaseTest, MakesTheFileAndItsTwoTables) {
    CreateLocalDb(store);
    EXPECT_EQ(Report(), "");
    EXPECT_THAT(
        doubles.Log().calls,
        ElementsAre("create " + ConnectionText(),
                    "table DataTbl: CubeFile/202/0/2 CubeName/202/0/2 ObsName/202/0/2 ObsNum/202/0/2 "
                    "ObsLevel/202/0/2 ObsMember/202/0/2 ActivityList/202/0/2 SumeryLevel/202/0/2 "
                    "SumeryMember/202/0/2 AccountList/202/0/2 Measure/202/0/2 MoneySet/202/0/2 Plbs/202/0/2 "
                    "Rh/202/0/2 Firma/202/0/2 OpeningBalance/202/0/2 FromDate/7/0/2 ToDate/7/0/2",
                    "table QelName: CubeFile/202/0/2 CubeName/202/0/2 DimName/202/0/2 LevelNum/202/0/2 "
                    "DataMember/202/0/2 Firma/202/0/2 Obs/202/0/2"));
    EXPECT_EQ(doubles.Log().alive, 0) << "the catalog and its tables are released";
}

TEST_F(JetDatabaseTest, ReportsAFileThatExistsAndLeavesItAlone) {
    CreateLocalDb(store);
    CreateLocalDb(store);
    EXPECT_EQ(Report(), "Error : -2147217897\r\n\r\nDatabase already exists.\r\n\r\nSource : Microsoft JET "
                        "Database Engine");
    const std::string sqlite("SQLite format 3\0and the rest", 28);
    folder.Write("נתונים/QelFunction17.mdb", sqlite);
    doubles.Log().calls.clear();
    CreateLocalDb(store);
    EXPECT_THAT(Report(), HasSubstr("was made by SQLite"));
    EXPECT_EQ(ErrorOf([&] { OpenLocalDb(store); }), static_cast<std::int32_t>(0x80004005));
    EXPECT_EQ(folder.Read("נתונים/QelFunction17.mdb"), sqlite);
    EXPECT_TRUE(doubles.Log().calls.empty()) << "Jet is not asked";
    EXPECT_EQ(doubles.Log().alive, 0);
}

TEST_F(JetDatabaseTest, ReplacesAllRowsOfATableInOneTransaction) {
    CreateLocalDb(store);
    doubles.Log().calls.clear();
    const auto database = OpenLocalDb(store);
    TableRow first(16, "קוביה");
    first.push_back(DateFromDay({2020, 1, 1}));
    first.push_back(Null{});
    database->ReplaceRows("DataTbl", {first});
    TableRow second(18, Null{});
    second[0] = "";
    database->ReplaceRows("DataTbl", {second, first});
    EXPECT_THAT(doubles.Log().calls,
                ElementsAre("connect " + ConnectionText() + "|||-1", "begin", "open DataTbl 3 3 -1", "update",
                            "close", "commit", "begin", "open DataTbl 3 3 -1", "delete", "update", "update",
                            "close", "commit"));
    const auto rows = database->ReadRows("DataTbl");
    ASSERT_EQ(rows.size(), 2U);
    for (std::size_t column = 0; column < first.size(); ++column) {
        EXPECT_TRUE(rows[0][column].Is<Null>()) << column;
        EXPECT_EQ(rows[1][column].Get(), first[column].Get()) << column;
    }
    EXPECT_TRUE(database->ReadRows("QelName").empty());
}

TEST_F(JetDatabaseTest, ARowThatJetRefusesLeavesTheTableAsItWas) {
    CreateLocalDb(store);
    const auto database = OpenLocalDb(store);
    database->ReplaceRows("QelName", {TableRow(7, "old")});
    struct FailingCase {
        const char* what;
        TableRow bad;
        std::string failingCall;
        std::int32_t number;
    };
    const FailingCase cases[] = {
        {"a text longer than the column", TableRow(7, std::string(256, 'x')), "",
         static_cast<std::int32_t>(0x80040E57)},
        {"more values than columns", TableRow(8, "x"), "", 3265},
        {"a table that another program locks", TableRow(7, "x"), "delete", static_cast<std::int32_t>(E_FAIL)},
        {"a commit that fails", TableRow(7, "x"), "commit", static_cast<std::int32_t>(E_FAIL)},
    };
    for (const auto& c : cases) {
        doubles.Log().failingCall = c.failingCall;
        EXPECT_EQ(ErrorOf([&] {
                      database->ReplaceRows("QelName", {TableRow(7, "new"), c.bad});
                  }),
                  c.number)
            << c.what;
        EXPECT_EQ(doubles.Log().calls.back(), "rollback") << c.what;
        doubles.Log().failingCall.clear();
        const auto rows = database->ReadRows("QelName");
        ASSERT_EQ(rows.size(), 1U) << c.what;
        EXPECT_EQ(rows[0][0].As<std::string>(), "old") << c.what;
    }
    doubles.Log().failingCall = "begin";
    EXPECT_EQ(ErrorOf([&] { database->ReplaceRows("QelName", {}); }), static_cast<std::int32_t>(E_FAIL));
    EXPECT_EQ(doubles.Log().calls.back(), "begin") << "nothing to undo";
}

TEST_F(JetDatabaseTest, IsThereOnlyWithItsProvider) {
    EXPECT_TRUE(windows::JetDatabase::IsInstalled());
    doubles.RemoveProvider();
    EXPECT_FALSE(windows::JetDatabase::IsInstalled());
    doubles.RemoveObjects();
    CreateLocalDb(store);
    EXPECT_THAT(Report(), HasSubstr("Error : 429\r\n"));
}

} // namespace
} // namespace qel::test
