#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>

namespace qel::windows {

/// Fills an item's row and sets the text colour on it.
void FillRow(HDC screen, const RECT& row, bool isHighlighted, bool isDisabled = false);

/// Draws one line in the direction of its first letter, from the side at which the form begins. The system's
/// own drawing takes the direction from the control, and its versions differ about mirrored ones.
void DrawLine(HDC screen, const RECT& place, const std::wstring& text, bool isRightToLeft);

} // namespace qel::windows
