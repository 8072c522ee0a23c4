#pragma once

#include <string>
#include <string_view>

namespace qel {

/// UTF-8 text with every letter that FoldCase makes in upper case; bytes that are not UTF-8 stay as they are.
std::string UpperCase(std::string_view text);

} // namespace qel
