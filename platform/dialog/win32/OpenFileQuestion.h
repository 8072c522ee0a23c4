#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"

#include <string>

namespace qel::windows {

/// Shows the system's open-file dialog in front of the owner. Empty when the user cancels.
std::string AskForFileToOpen(HWND owner, const FileQuestion& question);

} // namespace qel::windows
