#include "lang/StringTable.h"
#include "platform/windows/WideText.h"

#include <gtest/gtest.h>

#include <memory>

namespace qel::test {
namespace {

struct FreeModule {
    void operator()(HMODULE module) const { ::FreeLibrary(module); }
};

/// A text of the module's string table, which has blocks of sixteen texts, each preceded by its length.
std::string ResourceText(HMODULE module, std::int32_t number, WORD language) {
    const auto block = MAKEINTRESOURCEW(static_cast<WORD>(number / 16 + 1));
    HRSRC const place = ::FindResourceExW(module, RT_STRING, block, language);
    if (place == nullptr) {
        return "(no block)";
    }
    const auto* text = static_cast<const wchar_t*>(::LockResource(::LoadResource(module, place)));
    for (int before = number % 16; before > 0; --before) {
        text += 1 + *text;
    }
    return windows::ToUtf8({text + 1, static_cast<std::size_t>(*text)});
}

TEST(StringResources, AreTheComponentsOwnStringsInBothLanguages) {
    const std::unique_ptr<HINSTANCE__, FreeModule> module(
        ::LoadLibraryExW(windows::ToWide(QEL_TEST_SERVER).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    ASSERT_NE(module, nullptr);
    ASSERT_FALSE(StringTable().empty());
    for (const StringTableEntry& entry : StringTable()) {
        EXPECT_EQ(ResourceText(module.get(), entry.number, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)),
                  entry.english)
            << entry.number;
        EXPECT_EQ(ResourceText(module.get(), entry.number, MAKELANGID(LANG_HEBREW, SUBLANG_DEFAULT)),
                  entry.hebrew)
            << entry.number;
    }
}

} // namespace
} // namespace qel::test
