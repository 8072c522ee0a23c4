#pragma once

// The system's headers of dialogs and common controls, in the order that they require. clang-format off
#include "platform/windows/WindowsApi.h"

#include <commctrl.h>
#include <commdlg.h>
#include <shellapi.h>
// clang-format on
