#include "platform/tables/msxml/MsxmlTableReader.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/AutomationClient.h"
#include "tests/platform/tables/RecordsetXmlCases.h"
#include "text/Utf8Path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::test {
namespace {

using ::testing::HasSubstr;

TEST(MsxmlTableReader, ReadsWhatTheReaderOfOtherSystemsReads) {
    const Apartment apartment;
    const TemporaryFolder folder;
    for (const auto& c : ReadableRecordsets()) {
        EXPECT_EQ(Shown(windows::MsxmlTableReader().Read(PathToUtf8(folder.Write("שפה.rs", c.bytes)))),
                  c.result)
            << c.what;
    }
}

TEST(MsxmlTableReader, TellsWhatIsWrongWithAFile) {
    const Apartment apartment;
    const TemporaryFolder folder;
    for (const auto& c : UnreadableRecordsets()) {
        try {
            windows::MsxmlTableReader().Read(PathToUtf8(folder.Write("Lang.rs", c.bytes)));
            ADD_FAILURE() << c.what << ": no error";
        } catch (const AutomationError& error) {
            EXPECT_THAT(error.Description(), HasSubstr(c.result)) << c.what;
            EXPECT_THAT(error.Description(), HasSubstr("Lang.rs")) << c.what;
        }
    }
}

} // namespace
} // namespace qel::test
