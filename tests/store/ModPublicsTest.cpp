#include "store/ModPublics.h"

#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

using test::StoreBench;
using ::testing::ElementsAre;

TEST(ReadQelIni, ReadsTheSuitesFileOrTheComponents) {
    StoreBench bench;
    bench.profiles.value = std::string("2\0rest", 6);
    EXPECT_EQ(ModPublics::ReadQelIni(bench.store, "Qel", "QelUILanguage"), "2");
    EXPECT_EQ(bench.store.suiteFolder, R"(C:\Program Files\Qel)");
    bench.SuiteKey()["MDBPath"] = {registryString, R"(D:\סוויטה)"};
    ModPublics::ReadQelIni(bench.store, "Qel", "QelUILanguage");
    EXPECT_EQ(bench.store.suiteFolder, R"(D:\סוויטה)");
    EXPECT_THAT(bench.profiles.log, ElementsAre(R"(read Qel/QelUILanguage 255 C:\Program Files\Qel\Qel.ini)",
                                                R"(read Qel/QelUILanguage 255 D:\סוויטה\Qel.ini)"));
}

TEST(CubIni, StandsBesideTheDatabase) {
    const test::TemporaryFolder temporary;
    const std::string folder = PathToUtf8(temporary.Path("db"));
    StoreBench bench;
    bench.SuiteKey()["MDBPath"] = {registryString, folder};
    EXPECT_NE(ModPublics::WriteCubIni(bench.store, "FileCube", "F", "  C:\\Cubes\\my cube.cub "), 0);

    const struct {
        const char* what;
        std::string entries, result;
    } cases[] = {
        {"the one entry", std::string("F=C:\\a.cub\0", 11), "C:\\a.cub"},
        {"the first of two", std::string("F=a\0G=b\0", 8), "a"},
        {"a longer key keeps its rest", std::string("File=a\0", 7), "le=a"},
        {"an entry without a value", std::string("F=\0", 3), ""},
        {"no entry", "", ""},
    };
    for (const auto& c : cases) {
        bench.profiles.section = c.entries;
        std::string result = "before";
        ModPublics::ReadCubIniSection(bench.store, "FileCube", result);
        EXPECT_EQ(result, c.result) << c.what;
    }
    EXPECT_EQ(bench.profiles.log[0], "write FileCube/F=C:\\Cubes\\my cube.cub " + folder + "\\Cub.ini");
    EXPECT_EQ(bench.profiles.log[1], "section FileCube 512 " + folder + "\\Cub.ini");
}

} // namespace
} // namespace qel
