#pragma once

#include "platform/settings/Settings.h"
#include "platform/settings/files/IniFile.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qel {

/// The registry as a settings file: a section is a key by its full name
/// ("[HKEY_CURRENT_USER\SOFTWARE\QRN\Pralix 17]"), and its entries are the key's values, all texts. An
/// unreadable file is an empty registry.
class FileRegistry : public Registry {
public:
    explicit FileRegistry(const std::filesystem::path& file) : file_(file) {}

    std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) override;
    std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) override;
    std::int32_t CloseKey(KeyHandle key) override;

    /// Creates a missing key. Raises AutomationError when the file cannot be written; its folder must exist.
    void SetValue(KeyHandle root, const std::string& subKey, const std::string& name,
                  const std::string& text) const;

private:
    IniFile file_;
    std::vector<std::string> openKeys_; ///< the section of each handle; empty for a free handle
};

} // namespace qel
