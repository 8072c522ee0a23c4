#pragma once

#include <string>

namespace qel::windows {

/// Whether the first letter of the text is one that is written from right to left.
bool BeginsRightToLeft(const std::wstring& text);

/// A caption for a dialog that is mirrored or not. In a mirrored one the text itself says from which side it
/// is read: "OBS" within Hebrew words would otherwise move where the system does not take it from the layout.
std::wstring AsRead(const std::wstring& text, bool isMirrored);

} // namespace qel::windows
