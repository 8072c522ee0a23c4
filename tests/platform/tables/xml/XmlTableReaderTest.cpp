#include "platform/tables/xml/XmlTableReader.h"

#include "lang/LangCheck.h"
#include "lang/StringTable.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/platform/tables/RecordsetXmlCases.h"
#include "text/Utf8Path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

using ::testing::HasSubstr;

TEST(XmlTableReader, ReadsRowsInTheOrderOfTheColumns) {
    for (const auto& c : test::ReadableRecordsets()) {
        EXPECT_EQ(test::Shown(ParseXmlTable(c.bytes, "Lang.rs")), c.result) << c.what;
    }
}

TEST(XmlTableReader, TellsWhatIsWrongWithAFile) {
    const test::TemporaryFolder folder;
    auto cases = test::UnreadableRecordsets();
    cases.push_back(
        {"another encoding", "<?xml version='1.0' encoding='windows-1255'?><xml/>", "windows-1255"});
    for (const auto& c : cases) {
        const auto error =
            test::FailureOf([&] { XmlTableReader().Read(PathToUtf8(folder.Write("Lang.rs", c.bytes))); });
        EXPECT_THAT(error.Description(), AllOf(HasSubstr(c.result), HasSubstr("Lang.rs"))) << c.what;
    }
    EXPECT_THROW(XmlTableReader().Read("/nowhere/Lang.rs"), AutomationError);
}

TEST(ExampleLangTable, HasEveryTextOfTheComponentInBothLanguages) {
    const auto rows = LangRowsOf(XmlTableReader().Read(QEL_EXAMPLE_LANG));
    EXPECT_EQ(rows.size(), StringTable().size() * 2);
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, ResourceString(row.number, static_cast<std::int16_t>(row.language)))
            << row.number;
    }
    for (const auto& [language, findings] : CheckLangRows(rows)) {
        EXPECT_TRUE(findings.missing.empty() && findings.duplicate.empty() && findings.empty.empty())
            << language;
    }
}

} // namespace
} // namespace qel
