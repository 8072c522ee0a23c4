#include "platform/settings/windows/WindowsProfiles.h"

#include "platform/settings/windows/WindowsRegistry.h"
#include "store/ModPublics.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"
#include "tests/platform/settings/windows/SuiteKey.h"
#include "text/Utf8Path.h"

#include <gmock/gmock.h>

namespace qel::test {
namespace {

/// A text in UTF-16 with its byte order mark, as bytes.
std::string Utf16(const std::string& text) {
    const std::wstring wide = L'\xFEFF' + windows::ToWide(text);
    return {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t)};
}

/// A letter of the system's code page with its byte, and a letter that the code page lacks.
struct CodePageLetters {
    std::string inPage, byte, outside;
};

CodePageLetters LettersOfSystem() {
    constexpr UINT hebrew = 1255;
    constexpr UINT western = 1252;
    if (::GetACP() == hebrew) {
        return {"א", "\xE0", "é"};
    }
    EXPECT_EQ(::GetACP(), western) << "no letters are known of this code page";
    return {"é", "\xE9", "א"};
}

/// The suite's data folder with a Hebrew name, over the real registry and files.
struct WindowsProfilesTest : ::testing::Test {
    WindowsProfilesTest() {
        std::filesystem::create_directory(folder.Path(name));
        key.SetText(L"MDBPath", PathToUtf8(folder.Path(name)));
    }
    std::string File(const std::string& file) const { return name + "/" + file; }

    const std::string name = "נתוני פרליקס";
    const TemporaryFolder folder;
    const SuiteKey key;
    test::StoreBench bench;
    windows::WindowsRegistry registry;
    windows::WindowsProfiles profiles;
    StoreEnvironment store{registry, profiles, bench.database, bench.messages, PathToUtf8(folder.Path())};
};

TEST_F(WindowsProfilesTest, ReadsTheLanguageAsTheSuiteWroteIt) {
    struct FileCase {
        const char* what;
        std::string bytes, expected;
    };
    const FileCase cases[] = {
        {"plain", "[Qel]\r\nQelUILanguage=1\r\n", "1"},
        {"any letter case", "[QEL]\nqeluilanguage=2\n", "2"},
        {"blanks around the parts", "[Qel]\r\n  QelUILanguage  =  1  \r\n", "1"},
        {"a quoted value", "[Qel]\r\nQelUILanguage=\"1\"\r\n", "1"},
        {"a comment before it", "; QelUILanguage=2\r\n[Qel]\r\n;QelUILanguage=2\r\nQelUILanguage=1\r\n", "1"},
        {"the first of two", "[Qel]\r\nQelUILanguage=1\r\nQelUILanguage=2\r\n", "1"},
        {"another section's", "[Other]\r\nQelUILanguage=1\r\n", ""},
        {"UTF-16", Utf16("[Qel]\r\nQelUILanguage=עברית\r\n"), "עברית"},
        {"junk", std::string("\0\x01[[[Qel\r\n=1\r\n]", 15), ""},
        {"nothing", "", ""},
        {"longer than the buffer", "[Qel]\r\nQelUILanguage=" + std::string(300, 'x') + "\r\n",
         std::string(254, 'x')},
    };
    for (const auto& c : cases) {
        // A new file each time, because the system may cache the last one.
        const std::string subfolder = name + std::to_string(&c - cases);
        std::filesystem::create_directory(folder.Path(subfolder));
        folder.Write(subfolder + "/Qel.ini", c.bytes);
        key.SetText(L"MDBPath", PathToUtf8(folder.Path(subfolder)));
        EXPECT_EQ(ModPublics::ReadQelIni(store, "Qel", "QelUILanguage"), c.expected) << c.what;
    }
    key.SetText(L"MDBPath", "");
    folder.Write("Qel.ini", "[Qel]\r\nQelUILanguage=2\r\n");
    EXPECT_EQ(ModPublics::ReadQelIni(store, "Qel", "QelUILanguage"), "2") << "the component's own folder";
}

TEST_F(WindowsProfilesTest, RemembersTheLastCubeWhateverItsLetters) {
    const std::string cubes[] = {"C:\\cubes\\ledger.cub", "D:\\קוביות\\מאזן \"2020\".cub", "E:\\été.cub", ""};
    std::string read = "before";
    ModPublics::ReadCubIniSection(store, "FileCube", read);
    EXPECT_EQ(read, "") << "no file yet";
    for (const std::string& cube : cubes) {
        EXPECT_NE(ModPublics::WriteCubIni(store, "FileCube", "F", "  " + cube + " "), 0);
        ModPublics::ReadCubIniSection(store, "FileCube", read);
        EXPECT_EQ(read, cube);
    }
    EXPECT_TRUE(bench.messages.shown.empty());
}

TEST_F(WindowsProfilesTest, ChangesTheFilesEncodingOnlyForALetterThatItLacks) {
    const auto [inPage, byte, outside] = LettersOfSystem();
    const auto write = [&](const std::string& cube) {
        EXPECT_NE(ModPublics::WriteCubIni(store, "FileCube", "F", cube), 0) << cube;
        return folder.Read(File("Cub.ini"));
    };
    folder.Write(File("Cub.ini"), "; " + byte + "\r\n[Other]\r\nKey=" + byte + "\r\n");
    EXPECT_EQ(write("C:\\" + inPage + ".cub"),
              "; " + byte + "\r\n[Other]\r\nKey=" + byte + "\r\n[FileCube]\r\nF=C:\\" + byte + ".cub\r\n");
    const std::string before = "; " + inPage + "\r\n[Other]\r\nKey=" + inPage + "\r\n[FileCube]\r\nF=C:\\";
    EXPECT_EQ(write("C:\\" + outside + ".cub"), Utf16(before + outside + ".cub\r\n"));
    EXPECT_EQ(write("C:\\b.cub"), Utf16(before + "b.cub\r\n")) << "and stays so";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path(name)), {}), 1)
        << "nothing is left behind";
}

TEST_F(WindowsProfilesTest, TellsWhatCannotBeWritten) {
    const auto path = folder.Write(File("Cub.ini"), "[FileCube]\r\nF=C:\\a.cub\r\n");
    HANDLE const otherProgram = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(otherProgram, INVALID_HANDLE_VALUE);
    for (const char* cube : {"C:\\b.cub", "C:\\ב.cub"}) {
        EXPECT_EQ(profiles.WriteString("FileCube", "F", cube, PathToUtf8(path)), 0) << cube;
    }
    ::CloseHandle(otherProgram);
    EXPECT_EQ(folder.Read(File("Cub.ini")), "[FileCube]\r\nF=C:\\a.cub\r\n");
    EXPECT_EQ(profiles.WriteString("FileCube", "F", "C:\\א.cub", PathToUtf8(folder.Path("missing/Cub.ini"))),
              0);
    EXPECT_FALSE(std::filesystem::exists(folder.Path("missing")));
}

} // namespace
} // namespace qel::test
