#pragma once

#include <filesystem>

namespace qel {

/// Where the user's settings are kept: the folder "qel" of $XDG_CONFIG_HOME when that is an absolute path,
/// otherwise of ".config" in the home folder. The folder may be missing. Raises AutomationError when neither
/// is known.
std::filesystem::path ConfigFolder();

/// The file that stands for the registry.
std::filesystem::path SettingsFile();

} // namespace qel
