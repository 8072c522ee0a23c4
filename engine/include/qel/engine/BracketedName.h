#pragma once

#include <string>
#include <string_view>

namespace qel::engine {

/// "[name]" with every "]" of the name doubled.
std::string BracketedName(std::string_view name);
/// Appends it to a text.
void AppendBracketed(std::string_view name, std::string& text);

} // namespace qel::engine
