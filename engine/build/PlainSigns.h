#pragma once

#include <string>
#include <string_view>

namespace qel::engine {

bool IsAscii(std::string_view text);

/// Replaces characters that spreadsheets and right-to-left exports use instead of plain ones: no-break and
/// thin spaces, the minus sign, the typographic apostrophe. Removes directional marks.
std::string WithPlainSigns(std::string_view text);

} // namespace qel::engine
