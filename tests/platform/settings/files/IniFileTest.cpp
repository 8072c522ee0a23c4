#include "platform/settings/files/IniFile.h"

#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sys/stat.h>
#include <thread>
#include <vector>

namespace qel {
namespace {

using test::TemporaryFolder;
using ::testing::HasSubstr;
using namespace std::string_literals;

struct EditCase {
    const char* what;
    std::string before, section, key, value, after;
};

const EditCase editCases[] = {
    {"a new file", "", "Qel", "Language", "1", "[Qel]\nLanguage=1\n"},
    {"comments and order stay",
     "; the suite's settings\n\n[Zeta]\nb=2\n; about a\na=1\n\n[Alpha]\nx=y\n; the end\n", "Zeta", "a", "9",
     "; the suite's settings\n\n\n[Zeta]\nb=2\n\n; about a\na=9\n\n\n[Alpha]\nx=y\n\n\n; the end\n"},
    {"a new key goes to the end of its section", "[A]\nx=1\n[B]\ny=2\n", "a", "z", "3",
     "[A]\nx=1\nz=3\n\n\n[B]\ny=2\n"},
    {"a new section goes to the end, after the last comment", "[A]\nx=1\n; last\n", "B", "y", "2",
     "[A]\nx=1\n\n\n; last\n[B]\ny=2\n"},
    {"letter case of names", "[FileCube]\nF=a\n", "FILECUBE", "f", "b", "[FileCube]\nf=b\n"},
    {"a byte order mark, Windows' line ends, blanks around the equals sign",
     "\xEF\xBB\xBF[Qel]\r\nא = 1\r\nB = 2\r\n", "Qel", "B", "שלום = 3", "[Qel]\nא=1\nB=שלום = 3\n"},
    {"the first of several is written, the others go", "[A]\nx=1\ny=2\nX=3\n", "A", "x", "9",
     "[A]\nx=9\ny=2\n"},
    {"entries before any section", "a=1\n[B]\nc=2\n", "B", "c", "3", "a=1\n\n\n[B]\nc=3\n"},
};

TEST(IniFile, SetsOneEntryAndKeepsTheRest) {
    for (const auto& c : editCases) {
        const TemporaryFolder folder;
        const auto path = c.before.empty() ? folder.Path("s.ini") : folder.Write("s.ini", c.before);
        const IniFile file(path);
        file.Set(c.section, c.key, c.value);
        EXPECT_EQ(folder.Read("s.ini"), c.after) << c.what;
        EXPECT_EQ(file.Get(c.section, c.key), c.value) << c.what;
        EXPECT_EQ(folder.FileCount(), 1U) << c.what;
    }
}

struct RefusedCase {
    const char* what;
    std::string before, fault;
};

TEST(IniFile, RefusesToWriteAFileOfWhichSomethingWouldBeLost) {
    const RefusedCase cases[] = {
        {"a line of no known form", "[Qel]\nQelUILanguage 1\n", "line 2 would be lost"},
        {"a heading without an end", "; x\n\n[Qel\na=1\n", "line 3 would be lost"},
        {"an entry without a name", "[Qel]\n=1\n", "line 2 would be lost"},
        {"a zero character", "[Qel]\na"s + '\0' + "b=1\nc=2\n", "line 2 would be lost"},
        {"a heading without a name", "[Qel]\n[ ]\nb=2\n", "line 2 would be lost"},
        {"a carriage return inside a heading", "a=1\n[Q\rel]\nb=2\n", "line 2 would be lost"},
        {"a comment of a heading that occurs twice", "[Qel]\na=1\n[B]\nb=1\n; more\n[Qel]\nc=1\n",
         "line 5 would be lost"},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const IniFile file(folder.Write("s.ini", c.before));
        const auto error = test::FailureOf([&] { file.Set("Qel", "x", "1"); });
        EXPECT_THAT(error.Description(), AllOf(HasSubstr(c.fault), HasSubstr("s.ini"))) << c.what;
        EXPECT_EQ(folder.Read("s.ini"), c.before) << c.what;
        EXPECT_EQ(folder.FileCount(), 1U) << c.what;
    }
}

TEST(IniFile, KeepsLinksAndWhoMayReadTheFile) {
    namespace fs = std::filesystem;
    const test::TemporaryFolder folder;
    const auto target = folder.Write("kept.ini", "[a]\nx=1\n");
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("kept.ini", folder.Path("settings.ini"));
    IniFile(folder.Path("settings.ini")).Set("a", "x", "2");
    EXPECT_TRUE(fs::is_symlink(folder.Path("settings.ini")));
    EXPECT_EQ(folder.Read("kept.ini"), "[a]\nx=2\n");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(folder.FileCount(), 2U) << "no other file is left behind";
}

TEST(IniFile, LosesNoEntryWhenManyWriteAtOnce) {
    const TemporaryFolder folder;
    const auto own = folder.Write("elsewhere.txt", "of somebody else");
    std::filesystem::create_symlink(own, folder.Path("s.ini.new"));
    constexpr std::size_t writers = 6, writes = 10;
    {
        std::vector<std::jthread> threads;
        threads.reserve(writers);
        for (std::size_t writer = 0; writer < writers; ++writer) {
            threads.emplace_back([writer, path = folder.Path("s.ini")] {
                for (std::size_t i = 0; i < writes; ++i) {
                    IniFile(path).Set("Qel", fmt::format("w{}_{}", writer, i), "1");
                }
            });
        }
    }
    EXPECT_EQ(IniFile(folder.Path("s.ini")).Entries("Qel").size(), writers * writes);
    EXPECT_EQ(folder.Read("elsewhere.txt"), "of somebody else") << "no link is followed";
}

TEST(IniFile, ReadsAroundJunkAndTellsWhatItCannotRead) {
    const TemporaryFolder folder;
    const IniFile file(folder.Write("s.ini", "junk\n[Qel]\nmore junk\nQelUILanguage=2\nQelUILanguage=1\n"));
    EXPECT_EQ(file.Get("qel", "qeluilanguage"), "2") << "the first one counts";
    EXPECT_EQ(file.Entries("Qel").size(), 2U);
    EXPECT_FALSE(file.HasSection("Cub"));
    EXPECT_FALSE(file.Get("Qel", "x"));
    EXPECT_FALSE(IniFile(folder.Path("missing.ini")).Get("Qel", "x"));

    ASSERT_EQ(::mkfifo(folder.Path("fifo.ini").c_str(), 0600), 0);
    for (const auto& path : {folder.Path(), folder.Path("fifo.ini"), std::filesystem::path("/dev/zero")}) {
        const IniFile special(path);
        EXPECT_THROW(special.Get("Qel", "x"), AutomationError) << path;
        EXPECT_THROW(special.Set("Qel", "x", "1"), AutomationError) << path;
    }
    EXPECT_THROW(IniFile(folder.Path("missing/s.ini")).Set("Qel", "x", "1"), AutomationError);
    EXPECT_THROW(file.Set("Qel", "x", "1\n[B]"), AutomationError);
}

} // namespace
} // namespace qel
