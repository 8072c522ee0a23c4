#pragma once

#include <string>
#include <string_view>

namespace qel {

/// An ASCII digit.
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
/// Without the blanks (character 32 only) at both ends; tabs and no-break spaces stay.
std::string_view Trimmed(std::string_view text);
/// Trims in place; an argument passed by reference comes back trimmed.
void Trim(std::string& text);
bool ContainsIgnoringCase(std::string_view text, std::string_view part);
/// The number of characters as the platform counts them: UTF-16 units.
std::size_t LengthInUtf16(std::string_view text);
std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with);

} // namespace qel
