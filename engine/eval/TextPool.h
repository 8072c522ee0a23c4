#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>

namespace qel::engine {

/// A longer text raises TooLarge.
inline constexpr std::size_t textLimit = 1'000'000;

/// Raises TooLarge when a text has more than `textLimit` bytes.
void CheckTextLength(std::size_t bytes);

/// The texts that are values of cells: each is kept once, at one address.
class TextPool {
public:
    /// Raises TooLarge when one text, or all together, are too long.
    const std::string& Keep(std::string text);

private:
    std::unordered_set<std::string> texts_;
    std::size_t bytes_ = 0;
};

} // namespace qel::engine
