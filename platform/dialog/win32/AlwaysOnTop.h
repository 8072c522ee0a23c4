#pragma once

#include "platform/windows/WindowsApi.h"

#include <cstdint>

namespace qel::windows {

/// Keeps a window above all others, or no longer does; its place and size stay. Returns what the system
/// answered when `onTop`, and 0 otherwise.
std::int32_t SetAlwaysOnTop(HWND window, bool onTop);

} // namespace qel::windows
