#include "engine/build/BuildCube.h"

#include "engine/storage/CubeFile.h"
#include "tests/engine/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace qel::engine {
namespace {

TEST(BuildCube, Smoke) {
    const TemporaryFolder folder;
    folder.Write("accounts.csv",
                 "code,name,group1,group2\n4000,Sales,4,40\n4100,Other,4,41\n5000,Cost,5,50\n");
    folder.Write("ledger.csv", "date,account,firm,amount\n2024-01-31,4000,1,10.50\n2024-03-01,5000,2,-3\n");
    const auto definition = folder.Write("cube.json", R"({
      "tables": {"ledger": {"file": "ledger.csv"}, "accounts": {"file": "accounts.csv"}},
      "cubes": [{"name": "LedgerFNC", "facts": "ledger", "dimensions": [
        {"name": "Date", "column": "date", "calendar": {"periods": "months"}},
        {"name": "Accounts", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
          {"name": "AccountCodes", "levels": [{"name": "AccountCode", "key": "code", "caption": "name"}]},
          {"name": "Groups", "levels": [{"name": "G1", "key": "group1"}, {"name": "G2", "key": "group2"}]}]},
        {"name": "Firma", "column": "firm"}, {"name": "MoneyType", "members": ["Local"]}],
        "measures": [{"name": "Amount", "column": "amount"}]}]})");
    const auto totals = BuildCube({definition, folder.Path("out.cub"), std::nullopt, {}});
    EXPECT_EQ(totals.linesKept, 2U);
    const auto file = CubeFile::Open(folder.Path("out.cub"));
    file->Verify({});
    const auto cube = file->FindCube("ledgerfnc");
    ASSERT_EQ(cube->Hierarchies().size(), 5U);
    EXPECT_EQ(cube->Hierarchies()[0].MemberUniqueName(4), "[Date].[All].[2024].[Q1].[2]");
}

} // namespace
} // namespace qel::engine
