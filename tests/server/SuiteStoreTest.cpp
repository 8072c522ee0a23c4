#include "server/SuiteStore.h"

#include "store/LocalDb.h"
#include "store/ModPublics.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/AutomationClient.h"
#include "tests/platform/settings/windows/SuiteKey.h"
#include "text/Utf8Path.h"

#include <gmock/gmock.h>

namespace qel::test {
namespace {

/// A user's first steps, as the dialogs take them, on a machine without Jet.
TEST(SuiteStore, ServesTheMachinesSettingsDatabaseAndTexts) {
    const Apartment apartment;
    const TemporaryFolder folder;
    const SuiteKey key;
    const auto suite = folder.Path("פרליקס 17");
    key.SetText(L"MDBPath", PathToUtf8(suite));

    auto& language = server::SuiteLanguage();
    StoreEnvironment& store = language.store;
    EXPECT_THAT(store.database.Name(), ::testing::StartsWith("SQLite 3."));
    CreateLocalDb(store);
    EXPECT_TRUE(std::filesystem::exists(suite / "QelFunction17.mdb")) << "the folder is made with it";
    OpenLocalDb(store)->ReplaceRows("QelName", {TableRow(7, "קוביה")});
    EXPECT_EQ(OpenLocalDb(store)->ReadRows("QelName").at(0).at(6).As<std::string>(), "קוביה");

    folder.Write("פרליקס 17/Qel.ini", "[Qel]\r\nQelUILanguage=1\r\n");
    ModLangFrm::InitLanguage(language);
    EXPECT_EQ(language.iLang, Language::Hebrew);
    EXPECT_TRUE(language.resourceOnly) << "no table stands beside the component";
    EXPECT_EQ(ModLangFrm::GetLangString(language, 1473), "בחירת קוביה");
    EXPECT_TRUE(std::filesystem::exists(PathFromSetting(store.componentFolder) / "windows_tests.exe"));
}

} // namespace
} // namespace qel::test
