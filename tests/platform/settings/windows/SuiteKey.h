#pragma once

#include "platform/windows/WideText.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::test {

/// The current user's empty suite key; removed at the end.
class SuiteKey {
public:
    SuiteKey() {
        Remove();
        EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_,
                                    nullptr),
                  ERROR_SUCCESS);
    }
    ~SuiteKey() {
        ::RegCloseKey(key_);
        Remove();
    }
    SuiteKey(const SuiteKey&) = delete;
    SuiteKey& operator=(const SuiteKey&) = delete;

    static void Remove() { ::RegDeleteTreeW(HKEY_CURRENT_USER, path); }
    /// `text` is stored as it is; the caller adds the terminating null.
    void Set(const wchar_t* name, const std::wstring& text, DWORD type = REG_SZ) const {
        EXPECT_EQ(::RegSetValueExW(key_, name, 0, type, reinterpret_cast<const BYTE*>(text.data()),
                                   static_cast<DWORD>(text.size() * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }
    void SetText(const wchar_t* name, const std::string& text) const {
        Set(name, windows::ToWide(text) + L'\0');
    }

private:
    static constexpr const wchar_t* path = LR"(SOFTWARE\QRN\Pralix 17)";
    HKEY key_ = nullptr;
};

} // namespace qel::test
