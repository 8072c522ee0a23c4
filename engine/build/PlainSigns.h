#pragma once

#include <string>
#include <string_view>

namespace qel::engine {

bool IsAscii(std::string_view text);

/// The text with the signs that spreadsheets and right-to-left exports put in place of plain ones replaced:
/// no-break and thin blanks, the minus sign, the typographic apostrophe; marks of direction are left out.
std::string WithPlainSigns(std::string_view text);

} // namespace qel::engine
