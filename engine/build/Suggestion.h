#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qel::engine {

/// The known word nearest to a mistyped one, or null when none is near.
const std::string* NearestWord(std::string_view word, std::span<const std::string> known);

/// "; did you mean \"X\"?" for the known word nearest to a mistyped one, otherwise an empty text.
std::string Suggestion(std::string_view word, std::span<const std::string> known);

} // namespace qel::engine
