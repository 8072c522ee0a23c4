#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// The known word nearest to a mistyped one, or null when none is near.
const std::string* NearestWord(std::string_view word, std::span<const std::string> known);

/// "; did you mean \"X\"?" for the known word nearest to a mistyped one, otherwise an empty text.
std::string Suggestion(std::string_view word, std::span<const std::string> known);

/// A list of words, prepared for many searches.
class KnownWords {
public:
    explicit KnownWords(std::vector<std::string> words);

    /// Up to `most` words similar to a mistyped one, the nearest first.
    std::vector<std::string> Nearest(std::string_view word, std::size_t most) const;

    std::span<const std::string> All() const { return words_; }

private:
    std::vector<std::string> words_;
    std::vector<std::u32string> letters_;
    std::vector<std::uint64_t> occurring_; ///< which letters each has, modulo 64
};

} // namespace qel
