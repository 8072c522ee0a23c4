#pragma once

#include <string>

namespace qel::windows {

/// Puts a text on the clipboard. Raises AutomationError when another program holds it.
void CopyText(const std::string& text);

} // namespace qel::windows
