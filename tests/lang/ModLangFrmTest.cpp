#include "tests/lang/LangBench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

using ModLangFrm::GetLangString;
using test::LangBench;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(LanguageFromIni, KnowsTheSuitesNumbersAlone) {
    struct SettingCase {
        const char* setting;
        std::int16_t language;
    };
    for (const auto& [setting, language] :
         {SettingCase{"", 0}, {"0", 0}, {"1", 1}, {"2", 2}, {"3", 0}, {"he", 0}, {"01", 0}, {" 1", 0}}) {
        LangBench bench;
        bench.bench.profiles.value = setting;
        EXPECT_EQ(ModLangFrm::LanguageFromIni(bench.bench.store), language) << "'" << setting << "'";
        EXPECT_THAT(bench.bench.profiles.log, ElementsAre(HasSubstr("read Qel/QelUILanguage ")));
    }
}

TEST(InitLanguage, WithoutATableTextsComeFromTheComponent) {
    LangBench bench;
    ModLangFrm::InitLanguage(bench.state);
    EXPECT_TRUE(bench.state.resourceOnly);
    EXPECT_TRUE(bench.tables.paths.empty());
    EXPECT_EQ(GetLangString(bench.state, 1473), "Select Cube");
    EXPECT_EQ(GetLangString(bench.state, 1364), "Unvalid Name for File Cube");
    bench.bench.profiles.value = "1";
    ModLangFrm::InitLanguage(bench.state);
    EXPECT_EQ(GetLangString(bench.state, 1481), "יתרת פתיחה");
    bench.bench.profiles.value = "2";
    ModLangFrm::InitLanguage(bench.state);
    EXPECT_EQ(GetLangString(bench.state, 1481), "Opening Balance") << "a language that the component lacks";
    EXPECT_EQ(GetLangString(bench.state, 1000), "1000") << "no such text";
}

TEST(InitLanguage, WithATableTextsComeFromItsLanguage) {
    LangBench bench;
    bench.PutLangFile();
    bench.tables.table = test::TableOf({{0, 1473, "Pick"}, {2, 1473, "Auswahl"}, {2, 1473, "second"}});
    bench.bench.profiles.value = "2";
    ModLangFrm::InitLanguage(bench.state);
    EXPECT_FALSE(bench.state.resourceOnly);
    EXPECT_THAT(bench.tables.paths, ElementsAre(bench.bench.store.componentFolder + "\\Lang.rs"));
    EXPECT_EQ(GetLangString(bench.state, 1473), "Auswahl") << "the first row of the language";
    EXPECT_EQ(GetLangString(bench.state, 1474), "1474") << "the component's own text is not asked";
    bench.bench.profiles.value = "1";
    ModLangFrm::InitLanguage(bench.state);
    EXPECT_EQ(GetLangString(bench.state, 1473), "1473") << "a language without rows";
    std::filesystem::remove(bench.folder.Path("component/Lang.rs"));
    ModLangFrm::InitLanguage(bench.state);
    EXPECT_EQ(GetLangString(bench.state, 1481), "יתרת פתיחה") << "the table is gone";
}

TEST(InitLanguage, FindsATableInAnyLetterCaseAndBesideSettingsFiles) {
    for (const char* place : {"component/lang.RS", "suite/Lang.rs", "settings/LANG.rs"}) {
        for (const bool hasSettingsFolder : {true, false}) {
            LangBench bench;
            auto& store = bench.bench.store;
            store.separator = '/';
            bench.bench.SuiteKey()["MDBPath"] = {.data = PathToUtf8(bench.folder.Path("suite"))};
            store.settingsFolder = hasSettingsFolder ? PathToUtf8(bench.folder.Path("settings")) : "";
            std::filesystem::create_directory(bench.folder.Path(place).parent_path());
            bench.folder.Write(place, "x");
            bench.tables.table = test::TableOf({{0, 1473, "Pick"}, {0, 1508, "Every"}});
            ModLangFrm::InitLanguage(bench.state);
            const bool isFound = hasSettingsFolder || std::string(place).starts_with("component");
            EXPECT_EQ(GetLangString(bench.state, 1473), isFound ? "Pick" : "Select Cube") << place;
            EXPECT_EQ(ModLangFrm::GetOwnString(bench.state, 1508), isFound ? "Every" : "All") << place;
            EXPECT_EQ(ModLangFrm::GetOwnString(bench.state, 1509), "Cost centres") << "not in the table";
        }
    }
}

struct BadTableCase {
    const char* what;
    std::optional<PersistedTable> table;
    std::string reported;
};

TEST(LoadLangTable, ReportsATableThatCannotBeUsed) {
    const BadTableCase cases[] = {
        {"damaged", std::nullopt,
         "Error : -2147467259\r\n\r\nThe file is damaged.\r\n\r\nSource : MSPersist"},
        {"no rows", test::TableOf({}), "Error : 3021\r\n"},
        {"no number column", PersistedTable{{"lId", "Id", "sText"}, {{1, 2, "x"}}}, "no column 'sId'"},
        {"no text column", PersistedTable{{"lId", "sId"}, {{1, 2}}}, "third column"},
        {"a malformed number", PersistedTable{{"lId", "sId", "t"}, {{1, 2, "x"}, {"1", "2b", "x"}}},
         "Row 2 of the language table: '2b' in column 'sId'"},
    };
    for (const auto& c : cases) {
        LangBench bench;
        bench.PutLangFile();
        bench.tables.table = c.table;
        ModLangFrm::InitLanguage(bench.state);
        ASSERT_EQ(bench.bench.messages.shown.size(), 1U) << c.what;
        EXPECT_THAT(bench.bench.messages.shown[0].text, HasSubstr(c.reported)) << c.what;
        EXPECT_EQ(GetLangString(bench.state, 1473), "Select Cube") << c.what;
    }
}

} // namespace
} // namespace qel
