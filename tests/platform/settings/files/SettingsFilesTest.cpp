#include "platform/settings/files/ConfigFolder.h"
#include "platform/settings/files/FileProfiles.h"
#include "platform/settings/files/FileRegistry.h"
#include "platform/value/AutomationError.h"
#include "store/ModAPI.h"
#include "store/ModPublics.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace qel {
namespace {

using test::TemporaryFolder;

/// The store's operations over files, as on a machine without the suite.
struct SettingsFiles : ::testing::Test {
    const TemporaryFolder folder;
    FileRegistry registry{folder.Path("settings.ini")};
    FileProfiles profiles;
    SqliteDatabase database;
    test::RecordedMessages messages;
    StoreEnvironment store{registry, profiles, database, messages, PathToUtf8(folder.Path("component")), '/'};

    void SetMdbPath(const std::string& path) const {
        registry.SetValue(RootKey::CurrentUser, ModAPI::suiteKey, "MDBPath", path);
    }
};

TEST_F(SettingsFiles, ServeTheStoreFromEndToEnd) {
    EXPECT_EQ(ModAPI::GetRegSetting(store, "MDBPath"), "");
    const std::string suite = PathToUtf8(folder.Path("חברה בע\"מ"));
    SetMdbPath(suite);
    EXPECT_EQ(folder.Read("settings.ini"),
              "[HKEY_CURRENT_USER\\SOFTWARE\\QRN\\Pralix 17]\nMDBPath=" + suite + "\n");
    EXPECT_EQ(ModAPI::QelFuncMdbPath(store), suite + "/");
    EXPECT_EQ(ModPublics::WriteCubIni(store, "FileCube", "F", " /cubes/מאזן.cub "), 1);
    std::string cube;
    ModPublics::ReadCubIniSection(store, "FileCube", cube);
    EXPECT_EQ(cube, "/cubes/מאזן.cub");
    ModPublics::ReadCubIniSection(store, "Other", cube);
    EXPECT_EQ(cube, "");
    EXPECT_EQ(ModPublics::ReadQelIni(store, "Qel", "QelUILanguage"), "");
    profiles.WriteString("Qel", "QelUILanguage", "1", suite + "\\Qel.ini");
    EXPECT_EQ(ModPublics::ReadQelIni(store, "Qel", "QelUILanguage"), "1")
        << "either separator names the file";
    EXPECT_EQ(store.openKeys.size(), 1U) << "a handle that was closed is given out again";
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(SettingsFiles, KeepHandlesApart) {
    SetMdbPath("/x");
    const auto first = registry.OpenKey(RootKey::CurrentUser, ModAPI::suiteKey);
    const auto second = registry.OpenKey(RootKey::CurrentUser, ModAPI::suiteKey);
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_FALSE(registry.OpenKey(RootKey::LocalMachine, ModAPI::suiteKey)) << "another root";
    EXPECT_EQ(registry.CloseKey(*first), 0);
    EXPECT_NE(registry.CloseKey(*first), 0);
    EXPECT_FALSE(registry.QueryValue(*first, "MDBPath")) << "closed";
    EXPECT_EQ(registry.QueryValue(*second, "mdbpath")->data, "/x");
    EXPECT_NE(registry.CloseKey(7), 0);
}

struct ValueCase {
    const char* what;
    std::string line, value;
};

TEST_F(SettingsFiles, ReadValuesAsProfileFilesDo) {
    std::string hebrew;
    for (int i = 0; i < 300; ++i) {
        hebrew += "א";
    }
    const ValueCase cases[] = {
        {"quotes keep outer blanks", "k=\" a \"", " a "},
        {"quotes of the other kind", "k='a'", "a"},
        {"quotes that do not match", "k=\"a'", "\"a'"},
        {"one quote", "k=\"", "\""},
        {"cut to 254 whole characters", "k=" + hebrew, hebrew.substr(0, std::size_t{254} * 2)},
    };
    for (const auto& c : cases) {
        const auto file = PathToUtf8(folder.Write("p.ini", "[s]\n" + c.line + "\n"));
        EXPECT_EQ(profiles.ReadString("s", "k", 255, file), c.value) << c.what;
    }
    const auto file = PathToUtf8(folder.Write("p.ini", "[s]\na=1\nb=2\n"));
    EXPECT_EQ(profiles.ReadSection("s", 512, file), std::string("a=1\0b=2\0", 8));
    EXPECT_EQ(profiles.ReadSection("s", 8, file), std::string("a=1\0b=", 6)) << "two characters end the list";
}

TEST_F(SettingsFiles, FailWithoutLosingAnything) {
    folder.Write("settings.ini", "junk\n");
    EXPECT_EQ(ModAPI::GetRegSetting(store, "MDBPath"), "") << "nothing is reported";
    EXPECT_THROW(SetMdbPath("/x"), AutomationError);
    EXPECT_EQ(folder.Read("settings.ini"), "junk\n");

    const FileRegistry unreadable(folder.Path());
    EXPECT_FALSE(FileRegistry(folder.Path()).OpenKey(RootKey::CurrentUser, ModAPI::suiteKey));
    EXPECT_EQ(profiles.WriteString("s", "k", "v", PathToUtf8(folder.Path("missing/p.ini"))), 0);
    ASSERT_TRUE(profiles.LastError());
    EXPECT_NE(profiles.LastError()->Description().find("missing/p.ini"), std::string::npos);
    EXPECT_EQ(profiles.ReadString("s", "k", 255, PathToUtf8(folder.Path())), "");
    EXPECT_TRUE(profiles.LastError()) << "a folder is no file";
    EXPECT_EQ(profiles.ReadString("s", "k", 255, PathToUtf8(folder.Path("none.ini"))), "");
    EXPECT_FALSE(profiles.LastError()) << "a missing file is no failure";
}

/// Sets an environment variable (or unsets it) until the end of the block.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) {
            before_ = before;
        }
        Put(value);
    }
    ~Variable() { Put(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void Put(const char* value) const {
        if (value) {
            setenv(name_, value, 1);
        } else {
            unsetenv(name_);
        }
    }
    const char* name_;
    std::optional<std::string> before_;
};

TEST(ConfigFolder, FollowsTheDesktopsRules) {
    const struct {
        const char *what, *configHome, *home, *settings;
    } cases[] = {
        {"the folder of configurations", "/c", "/h", "/c/qel/settings.ini"},
        {"a relative one does not count", "c", "/h", "/h/.config/qel/settings.ini"},
        {"an empty one neither", "", "/h", "/h/.config/qel/settings.ini"},
        {"none", nullptr, "/h", "/h/.config/qel/settings.ini"},
        {"nothing is known", nullptr, nullptr, nullptr},
    };
    for (const auto& c : cases) {
        const Variable configHome("XDG_CONFIG_HOME", c.configHome);
        const Variable home("HOME", c.home);
        if (c.settings) {
            EXPECT_EQ(SettingsFile(), c.settings) << c.what;
        } else {
            EXPECT_THROW(SettingsFile(), AutomationError) << c.what;
        }
    }
}

} // namespace
} // namespace qel
