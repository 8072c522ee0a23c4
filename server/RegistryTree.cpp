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

struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

std::optional<Value> ReadValue(HKEY root, const std::wstring& key, const std::wstring& name) {
    constexpr DWORD anyType = RRF_RT_ANY | RRF_NOEXPAND;
    Value value;
    DWORD size = 0;
    if (::RegGetValueW(root, key.c_str(), name.c_str(), anyType, nullptr, nullptr, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.bytes.resize(size);
    CheckKey(::RegGetValueW(root, key.c_str(), name.c_str(), anyType, &value.type, value.bytes.data(), &size),
             "cannot be read", key);
    value.bytes.resize(size);
    return value;
}

/// What `next` gives for 0, 1, … within a key, as RegEnumKeyEx does.
template <class Next>
std::vector<std::wstring> NamesIn(HKEY root, const std::wstring& key, Next next) {
    std::vector<std::wstring> names;
    Key opened;
    if (::RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, opened.Receive()) != ERROR_SUCCESS) {
        return names;
    }
    constexpr DWORD longestName = 16384;
    std::wstring name(longestName, L'\0');
    for (DWORD length = longestName; next(opened.Get(), static_cast<DWORD>(names.size()), name.data(),
                                          &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         length = longestName) {
        names.push_back(name.substr(0, length));
    }
    return names;
}

} // namespace

void RegistryTree::SetText(const std::wstring& key, const std::wstring& name,
                           const std::wstring& text) const {
    SetValue(key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void RegistryTree::SetNumber(const std::wstring& key, const std::wstring& name, DWORD number) const {
    SetValue(key, name, REG_DWORD, &number, sizeof number);
}

void RegistryTree::SetValue(const std::wstring& key, const std::wstring& name, DWORD type, const void* bytes,
                            std::size_t size) const {
    Key opened;
    CheckKey(::RegCreateKeyExW(root_, Full(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, opened.Receive(),
                               nullptr),
             "cannot be created", key);
    CheckKey(::RegSetValueExW(opened.Get(), name.c_str(), 0, type, static_cast<const BYTE*>(bytes),
                              static_cast<DWORD>(size)),
             "cannot be written", key);
}

void RegistryTree::Remove(const std::wstring& key) const {
    const LSTATUS status = ::RegDeleteTreeW(root_, Full(key).c_str());
    if (status != ERROR_FILE_NOT_FOUND) {
        CheckKey(status, "cannot be removed", key);
    }
}

void RegistryTree::RemoveIfChildless(const std::wstring& key) const { RemoveUnlessUsed(key, false); }

void RegistryTree::RemoveIfEmpty(const std::wstring& key) const { RemoveUnlessUsed(key, true); }

void RegistryTree::RemoveUnlessUsed(const std::wstring& key, bool valuesCount) const {
    Key opened;
    if (::RegOpenKeyExW(root_, Full(key).c_str(), 0, KEY_READ, opened.Receive()) != ERROR_SUCCESS) {
        return;
    }
    DWORD children = 0;
    DWORD values = 0;
    CheckKey(::RegQueryInfoKeyW(opened.Get(), nullptr, nullptr, nullptr, &children, nullptr, nullptr, &values,
                                nullptr, nullptr, nullptr, nullptr),
             "cannot be read", key);
    if (children == 0 && (values == 0 || !valuesCount)) {
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

std::vector<std::wstring> RegistryTree::Children(const std::wstring& key) const {
    return NamesIn(root_, Full(key), &::RegEnumKeyExW);
}

std::optional<std::wstring> RegistryTree::Text(const std::wstring& key, const std::wstring& name) const {
    const auto value = ReadValue(root_, Full(key), name);
    if (!value) {
        return std::nullopt;
    }
    const std::wstring text(reinterpret_cast<const wchar_t*>(value->bytes.data()),
                            value->bytes.size() / sizeof(wchar_t));
    return value->type == REG_SZ ? text.substr(0, text.find(L'\0')) : std::wstring();
}

std::vector<std::wstring> RegistryTree::ValueNames(const std::wstring& key) const {
    return NamesIn(root_, Full(key), [](HKEY opened, DWORD index, wchar_t* name, DWORD* length, auto...) {
        return ::RegEnumValueW(opened, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
}

void RegistryTree::RenameValue(const std::wstring& key, const std::wstring& from,
                               const std::wstring& to) const {
    if (const auto value = ReadValue(root_, Full(key), from)) {
        SetValue(key, to, value->type, value->bytes.data(), value->bytes.size());
        RemoveValue(key, from);
    }
}

void RegistryTree::RemoveValue(const std::wstring& key, const std::wstring& name) const {
    const LSTATUS status = ::RegDeleteKeyValueW(root_, Full(key).c_str(), name.c_str());
    if (status != ERROR_FILE_NOT_FOUND && status != ERROR_PATH_NOT_FOUND) {
        CheckKey(status, "cannot be changed", key);
    }
}

} // namespace qel::server
