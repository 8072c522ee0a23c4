#include "store/LocalDb.h"

#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

using ::testing::ElementsAre;

struct LocalDb : ::testing::Test {
    LocalDb() { bench.SuiteKey()["MDBPath"] = {registryString, folder}; }

    const test::TemporaryFolder temporary;
    const std::string folder = PathToUtf8(temporary.Path("Suite"));
    testing::StoreBench bench;
};

TEST_F(LocalDb, MakesTwoTablesInTheirOrder) {
    CreateLocalDb(bench.store);
    EXPECT_THAT(
        bench.database.log,
        ElementsAre(
            "create Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + folder + "\\QelFunction17.mdb",
            "table DataTbl: CubeFile 202 0 2, CubeName 202 0 2, ObsName 202 0 2, ObsNum 202 0 2, "
            "ObsLevel 202 0 2, ObsMember 202 0 2, ActivityList 202 0 2, SumeryLevel 202 0 2, "
            "SumeryMember 202 0 2, AccountList 202 0 2, Measure 202 0 2, MoneySet 202 0 2, Plbs 202 0 2, "
            "Rh 202 0 2, Firma 202 0 2, OpeningBalance 202 0 2, FromDate 7 0 2, ToDate 7 0 2",
            "table QelName: CubeFile 202 0 2, CubeName 202 0 2, DimName 202 0 2, LevelNum 202 0 2, "
            "DataMember 202 0 2, Firma 202 0 2, Obs 202 0 2"));
    EXPECT_TRUE(bench.messages.shown.empty());
    EXPECT_TRUE(std::filesystem::is_directory(temporary.Path("Suite"))) << "the folder is made first";
}

TEST_F(LocalDb, ReportsADatabaseThatExistsAndTouchesNothing) {
    bench.database.failsToCreate = true;
    CreateLocalDb(bench.store);
    EXPECT_EQ(bench.database.log.size(), 1U) << "no table is appended";
    EXPECT_THAT(bench.messages.shown, ElementsAre(testing::ShownMessage{
                                          48, "OrmFuncQel4",
                                          "Error : -2147217897\r\n\r\nDatabase already exists.\r\n\r\n"
                                          "Source : Microsoft JET Database Engine"}));
}

TEST_F(LocalDb, ReportsAnEngineThatIsMissing) {
    bench.database.isMissing = true;
    CreateLocalDb(bench.store);
    ASSERT_EQ(bench.messages.shown.size(), 1U);
    EXPECT_NE(bench.messages.shown[0].text.find("Error : 429\r\n"), std::string::npos);
}

} // namespace
} // namespace qel
