#pragma once

#include "platform/windows/WindowsApi.h"

#include <cstdint>

namespace qel::windows {

/// Sets whether a window stays above all others; its position and size do not change. Returns the system's
/// result when `onTop`, and 0 otherwise.
std::int32_t SetAlwaysOnTop(HWND window, bool onTop);

} // namespace qel::windows
