#include "server/RegistryTree.h"

#include "platform/windows/ProviderFailure.h"
#include "platform/windows/WideText.h"

#include <fmt/format.h>

namespace qel::server {

namespace {

class Key {
public:
    Key() = default;
    ~Key() {
        if (key_ != nullptr) {
            ::RegCloseKey(key_);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY Get() const { return key_; }
    HKEY* Receive() { return &key_; }

private:
    HKEY key_ = nullptr;
};

void CheckKey(LSTATUS status, const char* what, const std::wstring& key) {
    if (status == ERROR_SUCCESS) {
        return;
    }
    const AutomationError failure = windows::FailureOf(HRESULT_FROM_WIN32(status), what);
    throw AutomationError(failure.Number(),
                          fmt::format("{} (registry key {})", failure.Description(), windows::ToUtf8(key)));
}

} // namespace

void RegistryTree::SetText(const std::wstring& key, const std::wstring& name,
                           const std::wstring& text) const {
    Key opened;
    CheckKey(::RegCreateKeyExW(root_, Full(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, opened.Receive(),
                               nullptr),
             "cannot be created", key);
    const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    CheckKey(::RegSetValueExW(opened.Get(), name.c_str(), 0, REG_SZ, bytes, size), "cannot be written", key);
}

void RegistryTree::Remove(const std::wstring& key) const {
    const LSTATUS status = ::RegDeleteTreeW(root_, Full(key).c_str());
    if (status != ERROR_FILE_NOT_FOUND) {
        CheckKey(status, "cannot be removed", key);
    }
}

void RegistryTree::RemoveIfChildless(const std::wstring& key) const {
    Key opened;
    if (::RegOpenKeyExW(root_, Full(key).c_str(), 0, KEY_READ, opened.Receive()) != ERROR_SUCCESS) {
        return;
    }
    DWORD children = 0;
    CheckKey(::RegQueryInfoKeyW(opened.Get(), nullptr, nullptr, nullptr, &children, nullptr, nullptr, nullptr,
                                nullptr, nullptr, nullptr, nullptr),
             "cannot be read", key);
    if (children == 0) {
        Remove(key);
    }
}

bool RegistryTree::OtherBitnessHas(const std::wstring& key) const {
    return CanOpen(key, sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY);
}

bool RegistryTree::Has(const std::wstring& key) const { return CanOpen(key, 0); }

bool RegistryTree::CanOpen(const std::wstring& key, REGSAM view) const {
    Key opened;
    return ::RegOpenKeyExW(root_, Full(key).c_str(), 0, KEY_READ | view, opened.Receive()) == ERROR_SUCCESS;
}

} // namespace qel::server
