#include "store/ModAPI.h"

#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

using test::StoreBench;

struct FolderCase {
    const char* what;
    std::optional<RegistryValue> mdbPath;
    std::string folder; ///< expected from QelFuncMdbPath; "@" stands for an existing temporary folder
};

std::string WithFolder(std::string text, const std::string& folder) {
    const auto at = text.find('@');
    return at == std::string::npos ? text : text.replace(at, 1, folder);
}

constexpr std::uint32_t expandable = 2;
constexpr std::uint32_t number = 4;

TEST(QelFuncMdbPath, IsTheSettingAndASeparator) {
    const FolderCase cases[] = {
        {"a folder", RegistryValue{registryString, "@"}, "@\\"},
        {"a folder with a separator gets another", RegistryValue{registryString, "@\\"}, "@\\\\"},
        {"no setting: the root of the drive", std::nullopt, "\\"},
        {"an empty setting likewise", RegistryValue{registryString, ""}, "\\"},
        {"a text with variables is no text", RegistryValue{expandable, "@"}, "\\"},
        {"a number is no text", RegistryValue{number, "@"}, "\\"},
        {"a text ends at its first zero character", RegistryValue{registryString, std::string("@\0junk", 6)},
         "@\\"},
    };
    const test::TemporaryFolder temporary;
    std::string folder = PathToUtf8(temporary.Path());
    folder.pop_back();
    for (const auto& c : cases) {
        StoreBench bench;
        if (c.mdbPath) {
            bench.SuiteKey()["MDBPath"] = *c.mdbPath;
            bench.SuiteKey()["MDBPath"].data = WithFolder(c.mdbPath->data, folder);
        }
        bench.SuiteKey()["TempPath"] = {registryString, "D:\\Temp"};
        EXPECT_EQ(ModAPI::QelFuncMdbPath(bench.store), WithFolder(c.folder, folder)) << c.what;
        EXPECT_TRUE(bench.messages.shown.empty()) << c.what;
        EXPECT_TRUE(bench.registry.open.empty()) << c.what;
    }
}

TEST(QelFuncMdbPath, MakesItsFolderAndReportsWhenItCannot) {
    const test::TemporaryFolder temporary;
    StoreBench bench;
    const std::string folder = PathToUtf8(temporary.Path("תיקיה של Pralix"));
    bench.SuiteKey()["MDBPath"] = {registryString, folder};
    EXPECT_EQ(ModAPI::QelFuncMdbPath(bench.store), folder + "\\");
    EXPECT_TRUE(std::filesystem::is_directory(temporary.Path("תיקיה של Pralix")));
    EXPECT_EQ(temporary.FileCount(), 0U) << "the database itself is not made";

    const std::string deep = PathToUtf8(temporary.Path("missing/deep"));
    bench.SuiteKey()["MDBPath"].data = deep;
    EXPECT_EQ(ModAPI::QelFuncMdbPath(bench.store), deep + "\\");
    ASSERT_EQ(bench.messages.shown.size(), 1U);
    EXPECT_EQ(bench.messages.shown[0].text, "Error : 76\r\n\r\nPath not found: '" + deep +
                                                "\\'\r\n\r\nFunction : QelFuncMdbPath\r\nModule : ModAPI\r\n"
                                                "Source : OrmFuncQel4");
}

TEST(OpenKeys, AreRememberedOnceAHandle) {
    StoreBench bench;
    auto& store = bench.store;
    bench.registry.keys[{RootKey::LocalMachine, "SOFTWARE"}];
    EXPECT_EQ(ModAPI::FindKey(store, 1), -1) << "nothing was opened yet";

    KeyHandle suite = 0;
    KeyHandle again = 0;
    ASSERT_TRUE(ModAPI::RegOpen(store, RootKey::CurrentUser, ModAPI::suiteKey, suite));
    ASSERT_TRUE(ModAPI::RegOpen(store, RootKey::CurrentUser, ModAPI::suiteKey, again));
    EXPECT_NE(suite, again);
    EXPECT_EQ(ModAPI::FindKey(store, again), 1);
    EXPECT_EQ(ModAPI::KeyName(store, again), R"(HKEY_CURRENT_USER\SOFTWARE\QRN\Pralix 17)");

    EXPECT_TRUE(ModAPI::RegClose(store, again));
    EXPECT_FALSE(ModAPI::RegClose(store, again)) << "closed already";
    EXPECT_EQ(ModAPI::FindKey(store, again), 1) << "a closed key stays in the table";
    KeyHandle machine = 0;
    ASSERT_TRUE(ModAPI::RegOpen(store, RootKey::LocalMachine, "SOFTWARE", machine));
    ASSERT_EQ(machine, again) << "the platform gives the handle out again";
    EXPECT_EQ(ModAPI::KeyName(store, machine), R"(HKEY_LOCAL_MACHINE\SOFTWARE)");
    EXPECT_EQ(store.openKeys.size(), 2U);

    KeyHandle untouched = 5;
    EXPECT_FALSE(ModAPI::RegOpen(store, RootKey::Users, "missing", untouched));
    EXPECT_EQ(untouched, 5U);
    EXPECT_EQ(ModAPI::KeyName(store, RootKey::ClassesRoot), "HKEY_CLASSES_ROOT");
    EXPECT_EQ(ModAPI::KeyName(store, RootKey::Users), "HKEY_USERS");
    EXPECT_EQ(ModAPI::KeyName(store, 77), "");
}

} // namespace
} // namespace qel
