#include "platform/windows/msxml/MsxmlTableReader.h"

#include "platform/AutomationError.h"
#include "platform/PathText.h"
#include "tests/RecordsetXmlCases.h"
#include "tests/TemporaryFolder.h"
#include "tests/automation/AutomationClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::test {
namespace {

using ::testing::HasSubstr;

TEST(MsxmlTableReader, ReadsWhatTheReaderOfOtherSystemsReads) {
    const Apartment apartment;
    const TemporaryFolder folder;
    for (const auto& c : ReadableRecordsets())
        EXPECT_EQ(Shown(windows::MsxmlTableReader().Read(TextFromPath(folder.Write("שפה.rs", c.bytes)))),
                  c.result)
            << c.what;
}

TEST(MsxmlTableReader, TellsWhatIsWrongWithAFile) {
    const Apartment apartment;
    const TemporaryFolder folder;
    for (const auto& c : UnreadableRecordsets()) {
        try {
            windows::MsxmlTableReader().Read(TextFromPath(folder.Write("Lang.rs", c.bytes)));
            ADD_FAILURE() << c.what << ": no error";
        } catch (const AutomationError& error) {
            EXPECT_THAT(error.Description(), HasSubstr(c.result)) << c.what;
            EXPECT_THAT(error.Description(), HasSubstr("Lang.rs")) << c.what;
        }
    }
}

} // namespace
} // namespace qel::test
