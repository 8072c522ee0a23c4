#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"

#include <string>

namespace qel::windows {

/// Shows the system's dialog for opening a file before the owner; empty when the user chose none.
std::string AskForFileToOpen(HWND owner, const FileQuestion& question);

} // namespace qel::windows
