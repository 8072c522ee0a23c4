#pragma once

#include "platform/data/xmla/ServerOptions.h"

#include <filesystem>
#include <optional>

namespace qel {

/// "servers.ini" in the user's configuration folder; nullopt when that folder is unknown.
std::optional<std::filesystem::path> ServerSettingsFile();

/// The limits of the file's section [Limits], and the credentials of the sections named after hosts. A
/// missing file sets nothing. Limits are read at once; a value that is not a positive whole number raises
/// AutomationError. Credentials are read on use; a password in a file that others can read raises
/// AutomationError.
ServerOptions ReadServerOptions(const std::optional<std::filesystem::path>& file);

} // namespace qel
