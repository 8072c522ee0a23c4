#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>

namespace qel::server {

/// The classes in the machine's or the user's registry. Failures raise AutomationError with the system's
/// result code and the key's name.
class RegistryTree {
public:
    explicit RegistryTree(HKEY root) : root_(root) {}

    /// Sets a value and creates missing keys. An empty `name` is the key's default value.
    void SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text) const;
    /// Removes a key and everything below it. A missing key is not an error.
    void Remove(const std::wstring& key) const;
    /// Removes a key without subkeys.
    void RemoveIfChildless(const std::wstring& key) const;
    /// True when the key exists in the registry view of the other bitness.
    bool OtherBitnessHas(const std::wstring& key) const;
    /// True when the key exists.
    bool Has(const std::wstring& key) const;

private:
    std::wstring Full(const std::wstring& key) const { return L"Software\\Classes\\" + key; }
    bool CanOpen(const std::wstring& key, REGSAM view) const;

    HKEY root_;
};

} // namespace qel::server
