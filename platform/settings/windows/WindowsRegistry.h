#pragma once

#include "platform/settings/Settings.h"

namespace qel::windows {

/// The registry of the machine. Texts are read in UTF-16, so Hebrew arrives whole in every regional setting.
class WindowsRegistry : public Registry {
public:
    std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) override;
    std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) override;
    std::int32_t CloseKey(KeyHandle key) override;
};

} // namespace qel::windows
