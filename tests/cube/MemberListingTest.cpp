#include "cube/MemberListing.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

using test::ErrorOf;
using ::testing::ElementsAre;
using ::testing::StartsWith;

const std::string ledgerText = test::ConnectionTextFor("a.cub", "LedgerFNC");
const MemberListing costCenters = {"LedgerFNC", ObsListing{"OBS", "Cost_Centers"}};

TEST(ListMembersCellset, OpensAConnectionOfItsOwn) {
    auto provider = test::LedgerProvider();
    const auto cellset = ListMembersCellset(provider, "a.cub", costCenters);
    EXPECT_THAT(provider.TakeLog(), ElementsAre("new connection", "open " + ledgerText,
                                                "statement " + ComposeListing(costCenters), "release"));
    provider.failingStatement = -2147217900;
    EXPECT_EQ(ErrorOf([&] { ListMembersCellset(provider, "a.cub", costCenters); }), -2147217900);
    provider.failingOpen = 53;
    EXPECT_EQ(ErrorOf([&] { ListMembersCellset(provider, "a.cub", costCenters); }), 53);
}

struct OpenMemberRecordsetTest : ::testing::Test {
    void List(const std::string& cubeFile, const std::string& cubeName) {
        const auto rows = provider.CreateRecordset();
        OpenMemberRecordset(thread, provider, opened, *rows, cubeFile,
                            {cubeName, AccountCodesListing{"", "OBS"}});
    }
    /// What a listing logs before its statement.
    std::vector<std::string> ConnectionStepsOf(const std::string& cubeFile, const std::string& cubeName) {
        provider.TakeLog();
        List(cubeFile, cubeName);
        auto log = provider.TakeLog();
        EXPECT_THAT(log.back(), StartsWith("recordset SELECT {[AccX].[AccX].[All] } on columns,"))
            << cubeName;
        log.pop_back();
        return log;
    }

    test::RecordingProvider provider = test::LedgerProvider();
    ThreadState thread;
    OpenedCube opened;
};

TEST_F(OpenMemberRecordsetTest, ReusesTheThreadsConnectionForTheSameCube) {
    EXPECT_THAT(ConnectionStepsOf("a.cub", "LedgerFNC"), ElementsAre("new connection", "open " + ledgerText));
    EXPECT_THAT(ConnectionStepsOf("a.cub", "LedgerFNC"), ElementsAre());
    EXPECT_THAT(ConnectionStepsOf("a.cub", "OtherFNC"),
                ElementsAre("close", StartsWith("open Provider=MSOLAP;Data")));
    EXPECT_EQ(opened.cubeName, "OtherFNC");
    EXPECT_THAT(ConnectionStepsOf("A.cub", "OtherFNC"), ElementsAre("close", StartsWith("open ")))
        << "letter case";

    thread.CubeConnection->Close();
    EXPECT_THAT(ConnectionStepsOf("A.cub", "OtherFNC"), ElementsAre("close", StartsWith("open ")))
        << "a connection that the provider closed";
    OpenedCube openedByOther;
    EnsureCurrentCubeOpen(thread, provider, openedByOther, {"a.cub", "LedgerFNC"});
    EXPECT_THAT(ConnectionStepsOf("A.cub", "OtherFNC"), ElementsAre("close", StartsWith("open ")))
        << "another object opened another cube";
}

TEST_F(OpenMemberRecordsetTest, ReplacesAConnectionOfAnotherProviderOrNone) {
    thread.CubeConnection = provider.CreateConnection();
    thread.provider = &provider;
    EXPECT_THAT(ConnectionStepsOf("a.cub", "LedgerFNC"),
                ElementsAre("new connection", "release", "open " + ledgerText))
        << "one that was never opened has no provider";
    thread.CubeConnection->Close();
    thread.CubeConnection->Open("Provider=Other;Data Source=a.cub", "", "", optionsUnspecified);
    EXPECT_THAT(ConnectionStepsOf("a.cub", "LedgerFNC"),
                ElementsAre("new connection", "release", "open " + ledgerText));
}

TEST(CountObsLevels, CountsFromTheFirstFilledFieldDown) {
    const Variant null = Null{};
    const struct {
        const char* what;
        std::vector<std::vector<Variant>> rows;
        std::int16_t levels;
    } cases[] = {
        {"the top level", {{null, null, null, 5.0}, {"North", null, null, 5.0}}, 3},
        {"the second level", {{null, null, null, 1.0}, {null, "Main", null, 1.0}, {"", "Main", "x", 1.0}}, 2},
        {"the measure alone", {{null, null, null, 1.0}}, 0},
        {"a caption that is a number", {{null, null, null, 1.0}, {null, 2024.0, null, 1.0}}, 2},
        {"no rows", {}, 0},
    };
    for (const auto& c : cases) {
        auto provider = test::LedgerProvider();
        provider.recordFields = 4;
        provider.recordRows = c.rows;
        EXPECT_EQ(CountObsLevels(provider, "LedgerFNC", "a.cub", "OBS", "1"), c.levels) << c.what;
        EXPECT_THAT(provider.log,
                    ElementsAre("new connection", "open " + ledgerText,
                                "recordset " + ComposeObsLevelsStatement("LedgerFNC", "OBS", "1"),
                                "close recordset", "close", "release"));
    }
}

} // namespace
} // namespace qel::ModSetCube
