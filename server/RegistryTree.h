#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>

namespace qel::server {

/// The registry's classes of the machine or of a user. Every failure raises AutomationError with the system's
/// result code, naming the key.
class RegistryTree {
public:
    explicit RegistryTree(HKEY root) : root_(root) {}

    /// Sets a value, making the keys on the way; an empty `name` is the key's default value.
    void SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text) const;
    /// Removes a key and all below it; one that is not there is no failure.
    void Remove(const std::wstring& key) const;
    /// Removes a key that has nothing below it.
    void RemoveIfChildless(const std::wstring& key) const;
    /// True when the key is there, as programs of the other bitness see the registry.
    bool OtherBitnessHas(const std::wstring& key) const;
    /// True when the key is there.
    bool Has(const std::wstring& key) const;

private:
    std::wstring Full(const std::wstring& key) const { return L"Software\\Classes\\" + key; }
    bool CanOpen(const std::wstring& key, REGSAM view) const;

    HKEY root_;
};

} // namespace qel::server
