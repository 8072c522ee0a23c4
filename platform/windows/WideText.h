#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>
#include <string_view>

namespace qel::windows {

/// UTF-16 of a UTF-8 text. What is no UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view text);

/// UTF-8 of a UTF-16 text. Half a surrogate pair becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

/// The whole of an automation text, zero characters included; a null one is empty.
std::string TextOfBstr(BSTR text);

} // namespace qel::windows
