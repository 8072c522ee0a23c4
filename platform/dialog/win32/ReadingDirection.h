#pragma once

#include <string>

namespace qel::windows {

/// Whether the text's first letter is written from right to left.
[[nodiscard]] bool BeginsRightToLeft(const std::wstring& text);

/// A caption with direction marks when the dialog is mirrored: otherwise "OBS" within Hebrew words moves
/// wherever the system ignores the layout's direction.
std::wstring AsRead(const std::wstring& text, bool isMirrored);

} // namespace qel::windows
