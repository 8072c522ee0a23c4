#include "batch/GridAnswer.h"

#include <gtest/gtest.h>

namespace qel::batch {
namespace {

TEST(GridAnswer, KnowsAMemberByItsNamesHoweverTheServerWritesThem) {
    const GridRow account{"[Accounts].[AccountCodes].[All].[4000]", {}, 1};
    const GridRow number{"[ActX].[OBSx].[All].[OBS].[1]", {}, 2};
    const GridRow group{"[SuperSumery].[SumeryCode].[SuperSum2].[41]", "SuperSum2", 1};
    const struct {
        const char* what;
        const GridRow& asked;
        const char *uniqueName, *level;
        bool isSame;
    } cases[] = {
        {"as it was asked", account, "[Accounts].[AccountCodes].[All].[4000]", "", true},
        {"another letter case", account, "[ACCOUNTS].[AccountCodes].[all].[4000]", "", true},
        {"dimension and hierarchy in one name", account, "[Accounts.AccountCodes].[All].[4000]", "", true},
        {"by its key", account, "[Accounts].[AccountCodes].[AccountCode].&[4000]", "", true},
        {"another account", account, "[Accounts].[AccountCodes].[All].[4001]", "", false},
        {"the All member", account, "[Accounts].[AccountCodes].[All]", "", false},
        {"another cube's dimension", account, "[AccountsX].[AccountCodes].[All].[4000]", "", false},
        {"a name alone", account, "[4000]", "", false},
        {"nothing", account, "", "", false},
        {"both names of an OBS number", number, "[ActX.OBSx].[All].[OBS].[1]", "", true},
        {"the number of another name", number, "[ActX].[OBSx].[All].[Other].[1]", "", false},
        {"the name alone", number, "[ActX].[OBSx].[All].[OBS]", "", false},
        {"a group below its parents", group, "[SuperSumery.SumeryCode].[All].[4].[41]", "supersum2", true},
        {"a group of another level", group, "[SuperSumery].[SumeryCode].[All].[41]", "SuperSum1", false},
    };
    for (const auto& c : cases) {
        CellsetMember member;
        member.uniqueName = c.uniqueName;
        member.levelName = c.level;
        EXPECT_EQ(IsMemberOf(c.asked, member), c.isSame) << c.what;
    }
    CellsetMember bracket;
    bracket.uniqueName = "[Accounts].[AccountCodes].[All].[4]]1]";
    EXPECT_TRUE(IsMemberOf({"[Accounts].[AccountCodes].[All].[4]]1]", {}, 1}, bracket));
    EXPECT_FALSE(IsMemberOf({"[Accounts].[AccountCodes].[All].[1]", {}, 1}, bracket));
}

} // namespace
} // namespace qel::batch
