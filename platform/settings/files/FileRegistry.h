#pragma once

#include "platform/settings/Settings.h"
#include "platform/settings/files/IniFile.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qel {

/// The registry as a settings file: a section is a key, named in full
/// ("[HKEY_CURRENT_USER\SOFTWARE\QRN\Pralix 17]"), and its entries are the key's values, every one a text. A
/// file that cannot be read is a registry without keys.
class FileRegistry : public Registry {
public:
    explicit FileRegistry(const std::filesystem::path& file) : file_(file) {}

    std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) override;
    std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) override;
    std::int32_t CloseKey(KeyHandle key) override;

    /// Makes the key when it is missing. Raises AutomationError when the file cannot be written; its folder
    /// must exist.
    void SetValue(KeyHandle root, const std::string& subKey, const std::string& name,
                  const std::string& text) const;

private:
    IniFile file_;
    std::vector<std::string> openKeys_; ///< the section of every handle; empty for one that is free
};

} // namespace qel
