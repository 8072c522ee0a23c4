#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// The known word nearest to a mistyped one, or null when none is near.
const std::string* NearestWord(std::string_view word, std::span<const std::string> known);

/// Up to `most` known words that are near to it, the nearest first.
std::vector<std::string> NearestWords(std::string_view word, std::span<const std::string> known,
                                      std::size_t most);

/// "; did you mean \"X\"?" for the known word nearest to a mistyped one, otherwise an empty text.
std::string Suggestion(std::string_view word, std::span<const std::string> known);

} // namespace qel
