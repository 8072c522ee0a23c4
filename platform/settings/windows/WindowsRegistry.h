#pragma once

#include "platform/settings/Settings.h"

namespace qel::windows {

/// The machine's registry. Texts are read as UTF-16, so that Hebrew is preserved in every locale.
class WindowsRegistry : public Registry {
public:
    std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) override;
    std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) override;
    std::int32_t CloseKey(KeyHandle key) override;
};

} // namespace qel::windows
