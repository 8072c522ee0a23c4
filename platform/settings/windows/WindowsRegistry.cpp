#include "platform/settings/windows/WindowsRegistry.h"

#include "platform/windows/WideText.h"

#include <algorithm>

namespace qel::windows {

namespace {

/// Handles have 32 significant bits on every Windows; those of the roots are negative.
HKEY SystemHandle(KeyHandle handle) {
    const auto value = static_cast<LONG_PTR>(static_cast<std::int32_t>(handle));
    return reinterpret_cast<HKEY>(value); // NOLINT(performance-no-int-to-ptr): a handle is a number
}

KeyHandle PortHandle(HKEY key) { return static_cast<KeyHandle>(reinterpret_cast<ULONG_PTR>(key)); }

std::string TextOfBytes(const std::string& bytes) {
    std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
    std::copy_n(bytes.data(), wide.size() * sizeof(wchar_t), reinterpret_cast<char*>(wide.data()));
    return ToUtf8(wide);
}

} // namespace

std::optional<KeyHandle> WindowsRegistry::OpenKey(KeyHandle root, const std::string& subKey) {
    HKEY key = nullptr;
    if (::RegOpenKeyW(SystemHandle(root), ToWide(subKey).c_str(), &key) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return PortHandle(key);
}

std::optional<RegistryValue> WindowsRegistry::QueryValue(KeyHandle key, const std::string& name) {
    const std::wstring wideName = ToWide(name);
    RegistryValue value;
    DWORD type = 0;
    DWORD size = 0;
    LSTATUS status = ::RegQueryValueExW(SystemHandle(key), wideName.c_str(), nullptr, &type, nullptr, &size);
    do { // another program may lengthen the value in between
        value.data.resize(size);
        if (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
            status = ::RegQueryValueExW(SystemHandle(key), wideName.c_str(), nullptr, &type,
                                        reinterpret_cast<BYTE*>(value.data.data()), &size);
        }
    } while (status == ERROR_MORE_DATA);
    if (status != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.data.resize(size);
    value.type = type;
    if (type == registryString) {
        value.data = TextOfBytes(value.data);
    }
    return value;
}

std::int32_t WindowsRegistry::CloseKey(KeyHandle key) {
    return static_cast<std::int32_t>(::RegCloseKey(SystemHandle(key)));
}

} // namespace qel::windows
