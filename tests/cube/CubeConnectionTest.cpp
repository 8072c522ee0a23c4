#include "cube/CubeConnection.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

namespace qel::ModSetCube {
namespace {

using Log = std::vector<std::string>;

const std::string fileA = "C:\\a b\\A.cub", fileLowerA = "C:\\a b\\a.cub";
const std::string textOfA = test::ConnectionTextFor(fileA),
                  textOfLowerA = test::ConnectionTextFor(fileLowerA),
                  textOfOtherCube = test::ConnectionTextFor(fileA, "finance");

class CubeConnectionTest : public ::testing::Test {
protected:
    bool Ensure(const std::string& cubeFile, const std::string& cubeName = "Finance") {
        return EnsureCurrentCubeOpen(thread_, provider_, opened_, {cubeFile, cubeName});
    }

    test::RecordingProvider provider_ = test::LedgerProvider();
    ThreadState thread_;
    OpenedCube opened_;
};

TEST_F(CubeConnectionTest, MakesOpensAndChecksOnce) {
    EXPECT_TRUE(Ensure(fileA));
    EXPECT_EQ(provider_.TakeLog(), (Log{"new connection", "open " + textOfA, "catalog " + textOfA}));
    EXPECT_EQ(thread_.dates.CubeDates.size(), 24U);
    EXPECT_EQ(opened_.cubeFile, "") << "the first opening leaves the object's cube to the evaluation";
    opened_ = {fileA, "Finance"};
    EXPECT_TRUE(Ensure(fileA));
    EXPECT_EQ(provider_.TakeLog(), Log{});
}

TEST_F(CubeConnectionTest, ReopensAConnectionThatIsNotOpenAndForAnyOtherText) {
    thread_.CubeConnection = provider_.CreateConnection();
    thread_.provider = &provider_;
    EXPECT_TRUE(Ensure(fileA));
    thread_.CubeConnection->Close(); // as a provider does by itself
    EXPECT_TRUE(Ensure(fileA));
    EXPECT_EQ(provider_.TakeLog(), (Log{"new connection", "open " + textOfA, "catalog " + textOfA, "close",
                                        "open " + textOfA, "catalog " + textOfA}));
    opened_ = {fileA, "Finance"};
    EXPECT_TRUE(Ensure(fileLowerA));
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "open " + textOfLowerA, "catalog " + textOfLowerA}));
    EXPECT_EQ(opened_.cubeFile, fileLowerA);
    EXPECT_TRUE(Ensure(fileA, "finance"));
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "open " + textOfOtherCube, "catalog " + textOfOtherCube}));
    EXPECT_EQ(opened_.cubeName, "finance");
}

TEST_F(CubeConnectionTest, DropsAnOutdatedCubeEveryTime) {
    provider_.DimensionScript("ActX").levels.pop_back();
    const Log drop = {"new connection", "open " + textOfA, "catalog " + textOfA, "release"};
    for (int call = 0; call < 2; ++call) {
        EXPECT_FALSE(Ensure(fileA));
        EXPECT_EQ(thread_.CubeConnection, nullptr);
        EXPECT_EQ(provider_.TakeLog(), drop);
    }
}

TEST_F(CubeConnectionTest, NamesTheNewCubeEvenWhenItCannotBeOpened) {
    Ensure(fileA);
    provider_.failingOpen = -2147467259;
    EXPECT_THROW(Ensure("missing.cub", "None"), AutomationError);
    EXPECT_EQ(opened_.cubeFile, "missing.cub");
    EXPECT_EQ(opened_.cubeName, "None");
    EXPECT_EQ(thread_.CubeConnection->State(), stateClosed);
}

TEST_F(CubeConnectionTest, NameCallsOpenByTheSameRulesWithoutTheCheck) {
    const OpenedCube cube{fileA, "Finance"};
    OpenOrReuse(thread_, provider_, opened_, cube);
    EXPECT_EQ(provider_.TakeLog(), (Log{"new connection", "open " + textOfA}));
    OpenOrReuse(thread_, provider_, opened_, cube);
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "open " + textOfA})) << "the first opening named no cube";
    OpenOrReuse(thread_, provider_, opened_, cube);
    EXPECT_EQ(provider_.TakeLog(), Log{});

    EXPECT_TRUE(Ensure(cube.cubeFile));
    EXPECT_EQ(provider_.TakeLog(), Log{"catalog " + textOfA}) << "a value call needs the dates all the same";
    EXPECT_EQ(thread_.dates.CubeDates.size(), 24U);
    EXPECT_TRUE(Ensure(cube.cubeFile));
    EXPECT_EQ(provider_.TakeLog(), Log{});
}

TEST_F(CubeConnectionTest, AnotherProvidersCubeTakesAnotherConnection) {
    test::RecordingProvider other = test::LedgerProvider();
    const Providers providers([&](const std::string& text) -> DataAccess& {
        return text.find("other.cub") == std::string::npos ? provider_ : other;
    });
    const auto ensure = [&](const std::string& cubeFile) {
        return EnsureCurrentCubeOpen(thread_, providers, opened_, {cubeFile, "Finance"});
    };
    ensure(fileA);
    provider_.TakeLog();
    EXPECT_TRUE(ensure("other.cub"));
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "release"}));
    EXPECT_EQ(other.TakeLog().size(), 3U) << "made, opened and checked";
    other.failingOpen = 53;
    EXPECT_THROW(EnsureCurrentCubeOpen(thread_, providers, opened_, {"other.cub", "x"}), AutomationError);
    EXPECT_TRUE(ensure(fileA));
    EXPECT_EQ(provider_.TakeLog(), (Log{"new connection", "open " + textOfA, "catalog " + textOfA}));
}

TEST_F(CubeConnectionTest, ReopensWhenAnotherObjectOpenedAnotherCube) {
    Ensure(fileA);
    opened_ = {fileA, "Finance"};
    OpenedCube openedByOther;
    EnsureCurrentCubeOpen(thread_, provider_, openedByOther, {fileLowerA, "Finance"});
    provider_.TakeLog();
    EXPECT_TRUE(Ensure(fileA));
    EXPECT_EQ(provider_.TakeLog(), (Log{"close", "open " + textOfA, "catalog " + textOfA}));
}

} // namespace
} // namespace qel::ModSetCube
