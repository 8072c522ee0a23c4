#include "platform/settings/windows/WindowsRegistry.h"

#include "store/ModAPI.h"
#include "tests/helpers/doubles/StoreDoubles.h"
#include "tests/platform/settings/windows/SuiteKey.h"

#include <gtest/gtest.h>

namespace qel::test {
namespace {

struct WindowsRegistryTest : ::testing::Test {
    test::StoreBench bench;
    windows::WindowsRegistry registry;
    StoreEnvironment store{registry, bench.profiles, bench.database, bench.messages, R"(C:\Qel)"};
    const SuiteKey key;
};

TEST_F(WindowsRegistryTest, OnlyTextsCountUpToTheirFirstZero) {
    struct ValueCase {
        const char* what;
        std::wstring bytes;
        DWORD type;
        std::string expected;
    };
    const ValueCase cases[] = {
        {"a text", std::wstring(L"C:\\Pralix\0", 10), REG_SZ, R"(C:\Pralix)"},
        {"Hebrew, whatever the code page", std::wstring(L"D:\\\x5E4\x5E8\x05DC\x05D9\x05E7\x05E1 17\0", 13),
         REG_SZ, R"(D:\פרליקס 17)"},
        {"a letter outside the first plane", std::wstring(L"\xD83D\xDCC1\0", 3), REG_SZ, "📁"},
        {"no zero at its end", L"C:\\A", REG_SZ, R"(C:\A)"},
        {"a zero inside", std::wstring(L"C:\\A\0B\0", 7), REG_SZ, R"(C:\A)"},
        {"nothing", L"", REG_SZ, ""},
        {"longer than any buffer", std::wstring(5000, L'\x5D0'), REG_SZ,
         [] {
             std::string text;
             for (int i = 0; i < 5000; ++i) {
                 text += "א";
             }
             return text;
         }()},
        {"a text to expand", std::wstring(L"%TEMP%\0", 7), REG_EXPAND_SZ, ""},
        {"a number", std::wstring(L"\x41\x42", 2), REG_DWORD, ""},
        {"several texts", std::wstring(L"a\0b\0\0", 5), REG_MULTI_SZ, ""},
        {"bytes", L"AB", REG_BINARY, ""},
    };
    for (const auto& c : cases) {
        key.Set(L"MDBPath", c.bytes, c.type);
        EXPECT_EQ(ModAPI::GetRegSetting(store, "MDBPath"), c.expected) << c.what;
        EXPECT_EQ(ModAPI::GetRegSetting(store, "mdbpath"), c.expected) << c.what << ", in any letter case";
    }
    EXPECT_EQ(ModAPI::GetRegSetting(store, "TempPath"), "") << "no such value";
    SuiteKey::Remove();
    EXPECT_EQ(ModAPI::GetRegSetting(store, "MDBPath"), "") << "no such key";
    EXPECT_TRUE(bench.messages.shown.empty());
}

TEST_F(WindowsRegistryTest, OpensNamesAndClosesKeys) {
    KeyHandle handle = 0;
    ASSERT_TRUE(ModAPI::RegOpen(store, RootKey::CurrentUser, R"(software\qrn\PRALIX 17)", handle));
    EXPECT_EQ(ModAPI::KeyName(store, handle), R"(HKEY_CURRENT_USER\software\qrn\PRALIX 17)");
    EXPECT_TRUE(ModAPI::RegClose(store, handle));
    EXPECT_FALSE(ModAPI::RegClose(store, handle)) << "closed already";
    for (const KeyHandle root :
         {RootKey::ClassesRoot, RootKey::CurrentUser, RootKey::LocalMachine, RootKey::Users}) {
        KeyHandle opened = 0;
        EXPECT_TRUE(ModAPI::RegOpen(store, root, "", opened)) << RootKeyName(root);
        EXPECT_EQ(registry.CloseKey(opened), 0);
    }
    EXPECT_FALSE(ModAPI::RegOpen(store, RootKey::CurrentUser, R"(SOFTWARE\QRN\Pralix 18)", handle));
    EXPECT_FALSE(ModAPI::RegOpen(store, 0x1234567, "x", handle)) << "an invalid handle";
}

} // namespace
} // namespace qel::test
