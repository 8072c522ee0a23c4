#include "text/Suggestion.h"

#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace qel {

namespace {

/// How far a word may be from what was meant.
std::size_t LongestDistance(std::string_view word) { return std::max<std::size_t>(1, word.size() / 3); }

/// The edit distance in bytes: insertions, deletions, replacements and transpositions. Long words, for which
/// this takes long, are never near.
std::size_t Distance(std::string_view left, std::string_view right) {
    constexpr std::size_t longest = 100;
    if (left.size() > longest || right.size() > longest) {
        return std::max(left.size(), right.size());
    }
    std::vector<std::size_t> before, last(right.size() + 1), row(right.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
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
        before = last;
        last = row;
    }
    return last.back();
}

} // namespace

const std::string* NearestWord(std::string_view word, std::span<const std::string> known) {
    const std::string folded = FoldCase(word);
    const std::string* nearest = nullptr;
    std::size_t best = LongestDistance(word) + 1;
    for (const std::string& candidate : known) {
        const std::size_t distance = Distance(folded, FoldCase(candidate));
        if (distance < best) {
            best = distance;
            nearest = &candidate;
        }
    }
    return nearest;
}

std::vector<std::string> NearestWords(std::string_view word, std::span<const std::string> known,
                                      std::size_t most) {
    const std::string folded = FoldCase(word);
    std::vector<std::pair<std::size_t, std::size_t>> near; // distance and place
    for (std::size_t i = 0; i < known.size(); ++i) {
        const std::size_t distance = Distance(folded, FoldCase(known[i]));
        if (distance <= LongestDistance(word)) {
            near.emplace_back(distance, i);
        }
    }
    std::sort(near.begin(), near.end());
    std::vector<std::string> words;
    for (std::size_t i = 0; i < std::min(near.size(), most); ++i) {
        words.push_back(known[near[i].second]);
    }
    return words;
}

std::string Suggestion(std::string_view word, std::span<const std::string> known) {
    const std::string* nearest = NearestWord(word, known);
    return nearest == nullptr ? std::string() : fmt::format("; did you mean \"{}\"?", *nearest);
}

} // namespace qel
