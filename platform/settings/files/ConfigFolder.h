#pragma once

#include <filesystem>

namespace qel {

/// The folder of the user's settings: "qel" in $XDG_CONFIG_HOME if that is an absolute path, otherwise in
/// ".config" of the home folder, or on Windows in %APPDATA%. It may not exist. Raises AutomationError when
/// neither is known.
std::filesystem::path ConfigFolder();

/// The file that replaces the registry.
std::filesystem::path SettingsFile();

} // namespace qel
