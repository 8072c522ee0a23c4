#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// The ports for the suite's settings: the registry and the profile (INI) files, with one operation per
// platform call that the component makes. Texts are UTF-8.

namespace qel {

/// The 32 significant bits of a registry key's handle.
using KeyHandle = std::uint32_t;

namespace RootKey {
inline constexpr KeyHandle ClassesRoot = 0x80000000U;
inline constexpr KeyHandle CurrentUser = 0x80000001U;
inline constexpr KeyHandle LocalMachine = 0x80000002U;
inline constexpr KeyHandle Users = 0x80000003U;
} // namespace RootKey

/// "HKEY_CURRENT_USER" and the like; empty for a handle that is not a root key.
std::string RootKeyName(KeyHandle handle);

/// REG_SZ, the only value type that is read.
inline constexpr std::uint32_t registryString = 1;

struct RegistryValue {
    std::uint32_t type = registryString;
    std::string data; ///< of a text: as stored, including null characters
};

class Registry {
public:
    virtual ~Registry() = default;
    /// A handle to be closed, or nullopt when the key is missing or cannot be read.
    [[nodiscard]] virtual std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) = 0;
    /// Nullopt for a missing value.
    virtual std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) = 0;
    /// 0 on success, otherwise the platform's error number.
    virtual std::int32_t CloseKey(KeyHandle key) = 0;
};

class ProfileFiles {
public:
    virtual ~ProfileFiles() = default;
    /// The value without surrounding quotes, cut to `capacity` - 1 characters; empty when anything is
    /// missing.
    virtual std::string ReadString(const std::string& section, const std::string& key, std::size_t capacity,
                                   const std::string& file) = 0;
    /// Non-zero on success. A missing file is created, a missing folder is not.
    virtual std::int32_t WriteString(const std::string& section, const std::string& key,
                                     const std::string& value, const std::string& file) = 0;
    /// The section's entries as null-terminated "key=value" texts, cut to `capacity` - 2 characters.
    virtual std::string ReadSection(const std::string& section, std::size_t capacity,
                                    const std::string& file) = 0;
};

} // namespace qel
