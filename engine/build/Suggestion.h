#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qel::engine {

/// "; did you mean \"X\"?" for the known word that a mistyped one most likely stands for, otherwise an empty
/// text.
std::string Suggestion(std::string_view word, std::span<const std::string> known);

} // namespace qel::engine
