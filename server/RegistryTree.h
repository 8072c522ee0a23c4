#pragma once

#include "platform/windows/WindowsApi.h"

#include <optional>
#include <string>
#include <vector>

namespace qel::server {

/// A part of the machine's or the user's registry. Failures raise AutomationError with the system's result
/// code and the key's name.
class RegistryTree {
public:
    /// Keys are named below `base`; an empty name is the base itself.
    RegistryTree(HKEY root, std::wstring base) : root_(root), base_(std::move(base)) {}

    /// Sets a value and creates missing keys. An empty `name` is the key's default value.
    void SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text) const;
    void SetNumber(const std::wstring& key, const std::wstring& name, DWORD number) const;
    /// Removes a key and everything below it. A missing key is not an error.
    void Remove(const std::wstring& key) const;
    /// Removes a key without subkeys.
    void RemoveIfChildless(const std::wstring& key) const;
    /// Removes a key without subkeys and values.
    void RemoveIfEmpty(const std::wstring& key) const;
    /// True when the key exists in the registry view of the other bitness.
    bool OtherBitnessHas(const std::wstring& key) const;
    /// True when the key exists.
    bool Has(const std::wstring& key) const;
    /// The names of a key's subkeys; none for a missing key.
    std::vector<std::wstring> Children(const std::wstring& key) const;
    /// A value that is a text; an empty text for a value of another type; nullopt for a missing one.
    std::optional<std::wstring> Text(const std::wstring& key, const std::wstring& name) const;
    /// The names of a key's values; none for a missing key.
    std::vector<std::wstring> ValueNames(const std::wstring& key) const;
    /// Gives a value of any type another name, whose value is lost.
    void RenameValue(const std::wstring& key, const std::wstring& from, const std::wstring& to) const;
    /// A missing value or key is not an error.
    void RemoveValue(const std::wstring& key, const std::wstring& name) const;

private:
    std::wstring Full(const std::wstring& key) const { return key.empty() ? base_ : base_ + L"\\" + key; }
    bool CanOpen(const std::wstring& key, REGSAM view) const;
    void SetValue(const std::wstring& key, const std::wstring& name, DWORD type, const void* bytes,
                  std::size_t size) const;
    void RemoveUnlessUsed(const std::wstring& key, bool valuesCount) const;

    HKEY root_;
    std::wstring base_;
};

} // namespace qel::server
