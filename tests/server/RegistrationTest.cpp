#include "tests/helpers/automation/AutomationClient.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace qel::test {
namespace {

using Entry = HRESULT(STDAPICALLTYPE*)();
using InstallEntry = HRESULT(STDAPICALLTYPE*)(BOOL, PCWSTR);

/// Every key and text value below a key, as "key|name|text".
void Collect(HKEY parent, const std::wstring& path, std::set<std::wstring>& found) {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return;
    }
    found.insert(path);
    wchar_t name[300];
    for (DWORD i = 0;; ++i) {
        DWORD nameLength = 300;
        wchar_t text[2000] = {};
        DWORD bytes = sizeof text - sizeof *text;
        DWORD type = 0;
        if (::RegEnumValueW(key, i, name, &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(text),
                            &bytes) != ERROR_SUCCESS) {
            break;
        }
        found.insert(path + L"|" + name + L"|" + (type == REG_SZ ? text : L""));
    }
    for (DWORD i = 0;; ++i) {
        DWORD length = 300;
        if (::RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            break;
        }
        Collect(parent, path + L"\\" + name, found);
    }
    ::RegCloseKey(key);
}

/// In lower case, because a key keeps the spelling of its creator.
std::wstring Folded(std::wstring text) {
    ::CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

std::set<std::wstring> ClassesOf(HKEY root) {
    std::set<std::wstring> found;
    Collect(root, L"Software\\Classes", found);
    std::set<std::wstring> folded;
    for (const std::wstring& entry : found) {
        folded.insert(Folded(entry));
    }
    return folded;
}

bool Has(const std::set<std::wstring>& entries, const std::wstring& entry) {
    return entries.count(Folded(L"Software\\Classes\\" + entry)) == 1;
}

class Registration : public testing::Test {
protected:
    void TearDown() override { ::FreeLibrary(library_); }

    template <class Function>
    Function Find(const char* name) const {
        Function function = nullptr;
        const FARPROC found = ::GetProcAddress(library_, name);
        static_assert(sizeof function == sizeof found);
        std::memcpy(&function, &found, sizeof function);
        return function;
    }

    HMODULE library_ = ::LoadLibraryW(windows::ToWide(QEL_TEST_SERVER).c_str());
};

TEST_F(Registration, OfTheMachineLeavesNothingBehind) {
    const auto add = Find<Entry>("DllRegisterServer");
    const auto remove = Find<Entry>("DllUnregisterServer");
    ASSERT_EQ(remove(), S_OK);
    const auto before = ClassesOf(HKEY_LOCAL_MACHINE);
    EXPECT_FALSE(Has(before, L"OrmFunctionQel4.OrmQelFunction"));
    ASSERT_EQ(add(), S_OK);
    const auto during = ClassesOf(HKEY_LOCAL_MACHINE);
    const std::wstring key = L"CLSID\\{00BD0718-0F69-4087-B2E8-F036566AE73A}";
    EXPECT_TRUE(Has(during, key + L"\\Programmable"));
    EXPECT_TRUE(Has(during, key + L"\\InprocServer32|ThreadingModel|Apartment"));
    EXPECT_TRUE(Has(during, L"TypeLib\\{39CAA233-9A21-4A5A-AD45-2E4B078291ED}\\17.0||QRN Function QeL 17"));
    ASSERT_EQ(add(), S_OK);
    EXPECT_EQ(ClassesOf(HKEY_LOCAL_MACHINE), during) << "registering twice";
    ASSERT_EQ(remove(), S_OK);
    EXPECT_EQ(ClassesOf(HKEY_LOCAL_MACHINE), before);
    EXPECT_EQ(remove(), S_OK) << "unregistering twice";
    ASSERT_EQ(add(), S_OK); // for the tests that follow
}

TEST_F(Registration, OfAUserTouchesTheUsersClassesAlone) {
    const auto install = Find<InstallEntry>("DllInstall");
    const auto userBefore = ClassesOf(HKEY_CURRENT_USER);
    const auto machineBefore = ClassesOf(HKEY_LOCAL_MACHINE);
    ASSERT_EQ(install(TRUE, L"user"), S_OK);
    EXPECT_TRUE(Has(ClassesOf(HKEY_CURRENT_USER), L"OrmFunctionQel4.ClTimming"));
    EXPECT_EQ(ClassesOf(HKEY_LOCAL_MACHINE), machineBefore);
    ASSERT_EQ(install(FALSE, L"USER"), S_OK);
    std::set<std::wstring> userAfter = ClassesOf(HKEY_CURRENT_USER);
    for (const wchar_t* shared :
         {L"", L"\\clsid", L"\\interface", L"\\typelib"}) { // the system's own folders
        userAfter.erase(std::wstring(L"software\\classes") + shared);
    }
    for (const std::wstring& entry : userAfter) {
        EXPECT_EQ(userBefore.count(entry), 1U) << windows::ToUtf8(entry);
    }
}

std::wstring Own(const wchar_t* name) {
    return std::wstring(name) + L"|/A \"OrmFunctionQel4.OrmQelFunction\"";
}

/// "name|text" of each value before, during and after the registration.
const std::set<std::wstring> listCases[][3] = {
    {{}, {Own(L"OPEN")}, {}},
    {{L"open|a", L"OPEN2|c"}, {L"open|a", Own(L"OPEN1"), L"OPEN2|c"}, {L"open|a", L"OPEN1|c"}},
    {{L"OPEN|a", Own(L"OPEN3"), L"OPEN4|d", Own(L"OPEN5"), L"OPEN6|f", L"OPENING|x"}, // by hand
     {L"OPEN|a", Own(L"OPEN3"), L"OPEN4|d", Own(L"OPEN5"), L"OPEN6|f", L"OPENING|x"},
     {L"OPEN|a", L"OPEN3|d", L"OPEN4|f", L"OPENING|x"}},
};

TEST_F(Registration, OfAUserKeepsExcelsListOfAutomationAddIns) {
    const auto install = Find<InstallEntry>("DllInstall");
    const std::wstring options = L"Software\\Microsoft\\Office\\16.0\\Excel\\Options";
    const auto expectList = [&](const std::set<std::wstring>& values, const char* when) {
        std::set<std::wstring> found, expected = {options};
        Collect(HKEY_CURRENT_USER, options, found);
        for (const std::wstring& value : values) {
            expected.insert(std::wstring(options).append(L"|").append(value));
        }
        EXPECT_EQ(found, expected) << when;
    };
    for (const auto& [before, during, after] : listCases) {
        ::RegSetKeyValueW(HKEY_CURRENT_USER, options.c_str(), L"Any", REG_SZ, nullptr, 0); // makes the key
        ::RegDeleteKeyValueW(HKEY_CURRENT_USER, options.c_str(), L"Any");
        for (const std::wstring& value : before) {
            const std::wstring text = value.substr(value.find(L'|') + 1);
            ::RegSetKeyValueW(HKEY_CURRENT_USER, options.c_str(), value.substr(0, value.find(L'|')).c_str(),
                              REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
        }
        ASSERT_EQ(install(TRUE, L"user"), S_OK);
        expectList(during, "registered");
        ASSERT_EQ(install(FALSE, L"user"), S_OK);
        expectList(after, "unregistered");
        ::RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office");
    }
    ASSERT_EQ(install(TRUE, L"user"), S_OK);
    HKEY key = nullptr;
    EXPECT_NE(::RegOpenKeyW(HKEY_CURRENT_USER, options.c_str(), &key), ERROR_SUCCESS) << "there is no Excel";
    ASSERT_EQ(install(FALSE, L"user"), S_OK);
}

TEST_F(Registration, TheServerMayUnloadOnceItsObjectsAreGone) {
    const Apartment apartment;
    const auto canUnload = Find<Entry>("DllCanUnloadNow");
    EXPECT_EQ(canUnload(), S_OK);
    {
        const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);
}

TEST(TypeLibrary, IsNamedAndDescribedAndListsItsClasses) {
    ComPointer<ITypeLib> library;
    ASSERT_EQ(::LoadTypeLibEx(windows::ToWide(QEL_TEST_SERVER).c_str(), REGKIND_NONE, library.Receive()),
              S_OK);
    BSTR name = nullptr;
    BSTR description = nullptr;
    ASSERT_EQ(library->GetDocumentation(MEMBERID_NIL, &name, &description, nullptr, nullptr), S_OK);
    EXPECT_EQ(windows::TextOfBstr(name), "OrmFunctionQel4");
    EXPECT_EQ(windows::TextOfBstr(description), "QRN Function QeL 17");
    ::SysFreeString(name);
    ::SysFreeString(description);
    EXPECT_EQ(library->GetTypeInfoCount(), 4U);
}

} // namespace
} // namespace qel::test
