#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qel::engine {

/// The known word that a mistyped one most likely stands for, or that is a slip of it; null when none is
/// near.
const std::string* NearestWord(std::string_view word, std::span<const std::string> known);

/// "; did you mean \"X\"?" for the known word that a mistyped one most likely stands for, otherwise an empty
/// text.
std::string Suggestion(std::string_view word, std::span<const std::string> known);

} // namespace qel::engine
