#include "text/Suggestion.h"

#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <string>
#include <utility>

namespace qel {

namespace {

/// A folded word, each letter as the number that its bytes make.
std::u32string LettersOf(std::string_view word) {
    std::u32string letters;
    for (const char c : FoldCase(word)) {
        const char32_t byte = static_cast<unsigned char>(c);
        const bool isContinued = (byte & 0xC0U) == 0x80;
        if (isContinued && !letters.empty()) {
            letters.back() = letters.back() << 8U | byte;
        } else {
            letters += byte;
        }
    }
    return letters;
}

/// How far a word may be from what was meant.
std::size_t LongestDistance(std::u32string_view word) { return std::max<std::size_t>(1, word.size() / 3); }

/// The edit distance in letters: insertions, deletions, replacements and transpositions. Long words, for
/// which this takes long, are never near.
std::size_t Distance(std::u32string_view left, std::u32string_view right) {
    constexpr std::size_t longest = 100;
    if (left.size() > longest || right.size() > longest) {
        return std::max(left.size(), right.size());
    }
    std::array<std::array<std::size_t, longest + 1>, 3> rows; // NOLINT(*-member-init): as far as it is read
    std::iota(rows[0].begin(), rows[0].begin() + static_cast<std::ptrdiff_t>(right.size()) + 1,
              std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        const auto &before = rows[(i + 1) % 3], &last = rows[(i + 2) % 3];
        auto& row = rows[i % 3];
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            const bool isExchanged =
                i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (isExchanged) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
    }
    return rows[left.size() % 3][right.size()];
}

std::uint64_t OccurringIn(std::u32string_view letters) {
    std::uint64_t occurring = 0;
    for (const char32_t letter : letters) {
        occurring |= std::uint64_t{1} << (letter % 64);
    }
    return occurring;
}

/// Each letter that occurs in only one of two words costs at least one edit.
bool AreFar(std::uint64_t left, std::uint64_t right, std::size_t limit) {
    return static_cast<std::size_t>(std::max(std::popcount(left & ~right), std::popcount(right & ~left))) >
           limit;
}

} // namespace

const std::string* NearestWord(std::string_view word, std::span<const std::string> known) {
    const std::u32string letters = LettersOf(word);
    const std::string* nearest = nullptr;
    std::size_t best = LongestDistance(letters) + 1;
    for (const std::string& candidate : known) {
        const std::size_t distance = Distance(letters, LettersOf(candidate));
        if (distance < best) {
            best = distance;
            nearest = &candidate;
        }
    }
    return nearest;
}

KnownWords::KnownWords(std::vector<std::string> words) : words_(std::move(words)) {
    for (const std::string& word : words_) {
        letters_.push_back(LettersOf(word));
        occurring_.push_back(OccurringIn(letters_.back()));
    }
}

std::vector<std::string> KnownWords::Nearest(std::string_view word, std::size_t most) const {
    const std::u32string letters = LettersOf(word);
    const std::uint64_t occurring = OccurringIn(letters);
    const std::size_t limit = LongestDistance(letters);
    std::vector<std::pair<std::size_t, std::size_t>> near; // distance and place
    for (std::size_t i = 0; i < words_.size(); ++i) {
        const auto [shorter, longer] = std::minmax({letters.size(), letters_[i].size()});
        if (longer - shorter > limit || AreFar(occurring, occurring_[i], limit)) {
            continue;
        }
        const std::size_t distance = Distance(letters, letters_[i]);
        if (distance <= limit) {
            near.emplace_back(distance, i);
        }
    }
    std::sort(near.begin(), near.end());
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < std::min(near.size(), most); ++i) {
        nearest.push_back(words_[near[i].second]);
    }
    return nearest;
}

std::string Suggestion(std::string_view word, std::span<const std::string> known) {
    const std::string* nearest = NearestWord(word, known);
    return nearest == nullptr ? std::string() : fmt::format("; did you mean \"{}\"?", *nearest);
}

} // namespace qel
