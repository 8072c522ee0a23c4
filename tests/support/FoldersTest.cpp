#include "support/Folders.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/TemporaryFolder.h"
#include "text/Utf8Path.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

std::int32_t ErrorOfMaking(const std::string& path) {
    try {
        MakeFolder(path);
        return 0;
    } catch (const AutomationError& error) {
        EXPECT_NE(error.Description().find(path), std::string::npos) << error.Description();
        return error.Number();
    }
}

TEST(MakeFolder, MakesOneLevelOrTellsWhyNot) {
    const test::TemporaryFolder folder;
    const std::string parent = PathToUtf8(folder.Path());
    folder.Write("file", "x");
    EXPECT_EQ(ErrorOfMaking(parent + "הנהלה חשבונות\\"), 0);
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path("הנהלה חשבונות")));
    EXPECT_EQ(ErrorOfMaking(parent + "הנהלה חשבונות/"), 75) << "it exists";
    EXPECT_EQ(ErrorOfMaking(parent + "missing/new"), 76) << "parents are not made";
    EXPECT_EQ(ErrorOfMaking(parent + "file"), 75);
    EXPECT_EQ(ErrorOfMaking(parent + "file/new"), 76);
}

} // namespace
} // namespace qel
