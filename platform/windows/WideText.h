#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>
#include <string_view>

namespace qel::windows {

/// Converts UTF-8 to UTF-16. Malformed UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view text);

/// Converts UTF-16 to UTF-8. An unpaired surrogate becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

/// The whole BSTR as UTF-8, including null characters; empty for a null pointer.
std::string TextOfBstr(BSTR text);

} // namespace qel::windows
