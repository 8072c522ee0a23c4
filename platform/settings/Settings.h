#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// The ports through which the component reads the suite's settings: the registry and the profile (INI) files,
// one operation for each platform call that the component makes. Texts are UTF-8.

namespace qel {

/// The 32 significant bits of a registry key's handle.
using KeyHandle = std::uint32_t;

namespace RootKey {
inline constexpr KeyHandle ClassesRoot = 0x80000000U;
inline constexpr KeyHandle CurrentUser = 0x80000001U;
inline constexpr KeyHandle LocalMachine = 0x80000002U;
inline constexpr KeyHandle Users = 0x80000003U;
} // namespace RootKey

/// "HKEY_CURRENT_USER" and the like; an empty text for a handle that is no root key.
std::string RootKeyName(KeyHandle handle);

/// REG_SZ, the one type of value that counts.
inline constexpr std::uint32_t registryString = 1;

struct RegistryValue {
    std::uint32_t type = registryString;
    std::string data; ///< of a text: as stored, with whatever zero characters it holds
};

class Registry {
public:
    virtual ~Registry() = default;
    /// A handle to close, or none when the key is missing or may not be read.
    virtual std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) = 0;
    /// None for a value that is missing.
    virtual std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) = 0;
    /// 0 when it was closed, otherwise the platform's error.
    virtual std::int32_t CloseKey(KeyHandle key) = 0;
};

class ProfileFiles {
public:
    virtual ~ProfileFiles() = default;
    /// The value, without quotes around it and cut to `capacity` - 1 characters; empty for anything that is
    /// missing.
    virtual std::string ReadString(const std::string& section, const std::string& key, std::size_t capacity,
                                   const std::string& file) = 0;
    /// Non-zero when it was written; the file is made when it is missing, its folder is not.
    virtual std::int32_t WriteString(const std::string& section, const std::string& key,
                                     const std::string& value, const std::string& file) = 0;
    /// The section's entries, "key=value" with a zero character after each, cut to `capacity` - 2 characters.
    virtual std::string ReadSection(const std::string& section, std::size_t capacity,
                                    const std::string& file) = 0;
};

} // namespace qel
