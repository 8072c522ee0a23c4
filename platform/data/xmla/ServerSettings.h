#pragma once

#include "platform/data/xmla/ServerOptions.h"

#include <filesystem>
#include <optional>

namespace qel {

/// "servers.ini" in the user's configuration folder; none when that folder is not known.
std::optional<std::filesystem::path> ServerSettingsFile();

/// The limits that the file's section [Limits] sets, and the credentials of its sections named as hosts. A
/// missing file sets nothing. Limits are read now; raises AutomationError for a value that is no positive
/// whole number. Credentials are read when they are asked for; a password in a file that others may read
/// raises AutomationError.
ServerOptions ReadServerOptions(const std::optional<std::filesystem::path>& file);

} // namespace qel
