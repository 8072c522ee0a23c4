#include "support/SettingPaths.h"

#include "support/Folders.h"
#include "support/Wildcard.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/TemporaryFolder.h"
#include "text/Utf8Path.h"

#include <gtest/gtest.h>

#include <set>

namespace qel {
namespace {

struct FilesTest : ::testing::Test {
    FilesTest() {
        std::filesystem::create_directories(folder.Path("תיק שכר/sub"));
        for (const char* name : {"a.tmp", "b.tmp", "b.TMP", "no extension", "keep.cub", "sub/c.tmp"}) {
            folder.Write(std::string("תיק שכר/") + name, "x");
        }
    }
    std::string PathOf(const std::string& name) const { return PathToUtf8(folder.Path("תיק שכר")) + name; }
    std::set<std::string> Remaining() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path("תיק שכר"))) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    const test::TemporaryFolder folder;
};

TEST(FileTexts, AddBackslashEndsAPathOnce) {
    const std::pair<const char*, const char*> cases[] = {{"C:\\data", "C:\\data\\"},
                                                         {"C:\\data\\  ", "C:\\data\\"},
                                                         {"data/", "data/"},
                                                         {"data  ", "data\\"},
                                                         {" data", " data\\"},
                                                         {"", "\\"},
                                                         {"   ", "\\"}};
    for (const auto& [path, ended] : cases) {
        std::string text = path;
        AddBackslash(text);
        EXPECT_EQ(text, ended);
    }
}

TEST(FileTexts, StripQuotesTakesOnePairOff) {
    const std::pair<const char*, const char*> cases[] = {
        {" \"a b\" ", "a b"}, {"\"\"", ""}, {"\"", "\""},           {"\"a", "\"a"},
        {"a\"", "a\""},       {"", ""},     {"\"\"a\"\"", "\"a\""}, {"\" a \"", " a "}};
    for (const auto& [text, stripped] : cases) {
        EXPECT_EQ(StripQuotes(text), stripped);
    }
}

TEST_F(FilesTest, TellsFilesFromFoldersWithEitherSeparator) {
    EXPECT_TRUE(FileExists(PathOf("/a.tmp")));
    EXPECT_TRUE(FileExists(" \"" + PathOf("\\sub\\c.tmp") + "\" "));
    EXPECT_TRUE(FileExists(PathOf("/a.tmp\\"))) << "one backslash at the end is ignored";
    EXPECT_TRUE(DirExists(PathOf("\\sub  ")));
    EXPECT_TRUE(DirExists(PathOf("/sub/")));
    for (const char* name :
         {"", "/sub", "/sub\\", "/missing", "/missing/a.tmp", "/a.tmp/a.tmp", "/a.tmp\\\\"}) {
        EXPECT_FALSE(FileExists(PathOf(name))) << name;
    }
    for (const char* name : {"/a.tmp", "/missing", "/a.tmp/x"}) {
        EXPECT_FALSE(DirExists(PathOf(name))) << name;
    }
    const std::string tooLong(100000, 'x');
    EXPECT_FALSE(FileExists(tooLong));
    EXPECT_FALSE(DirExists(tooLong));
    EXPECT_FALSE(FileExists(""));
}

TEST_F(FilesTest, DeletesTheFilesOfOneFolderThatMatch) {
    DeleteFiles(PathOf("/missing/*.tmp"));
    DeleteFiles(PathOf("\\?.tmp"));
    const std::set<std::string> others = {"b.TMP", "no extension", "keep.cub", "sub"};
#ifdef _WIN32
    EXPECT_EQ(Remaining(), (std::set<std::string>{"no extension", "keep.cub", "sub"}));
#else
    EXPECT_EQ(Remaining(), others);
#endif
    DeleteFiles(PathOf("\\*.*"));
    EXPECT_EQ(Remaining(), std::set<std::string>{"sub"});
    EXPECT_TRUE(FileExists(PathOf("/sub/c.tmp")));
}

TEST_F(FilesTest, MakesAFolderOfOneLevelOrTellsWhyNot) {
    const std::pair<const char*, std::int32_t> cases[] = {{"/הנהלה חשבונות\\", 0},
                                                          {"/הנהלה חשבונות/", 75}, // it exists
                                                          {"/missing/new", 76},    // parents are not made
                                                          {"/a.tmp", 75},
                                                          {"/a.tmp/new", 76}};
    for (const auto& [name, number] : cases) {
        const auto error = test::FailureOf([&, path = PathOf(name)] { MakeFolder(path); });
        EXPECT_EQ(error.Number(), number) << name;
        EXPECT_EQ(error.Description().find(PathOf(name)) == std::string::npos, number == 0)
            << error.Description();
    }
    EXPECT_TRUE(DirExists(PathOf("/הנהלה חשבונות")));
}

TEST(Wildcard, MatchesWholeNames) {
    const struct {
        const char *name, *pattern;
        bool matches;
    } cases[] = {
        {"a.tmp", "*.tmp", true},
        {"a.tmp.bak", "*.tmp", false},
        {"a.tmp.tmp", "*.tmp", true},
        {"name", "*.*", true},
        {"name", "name", true},
        {"name", "nam", false},
        {"nam", "name", false},
        {"é.x", "?.x", true},
        {"é", "??", false},
        {"", "*", true},
        {"", "?", false},
        {"", "", true},
        {"aXbXc", "a*X?", true},
        {"שכר.cub", "ש?ר*", true},
        {"ab", "a*b*", true},
        {"mississippi", "m*iss*pi", true},
        {"mississippi", "m*iss*px", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(MatchesWildcard(c.name, c.pattern), c.matches) << c.name << " " << c.pattern;
    }
}

} // namespace
} // namespace qel
