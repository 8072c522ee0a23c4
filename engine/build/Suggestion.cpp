#include "engine/build/Suggestion.h"

#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace qel::engine {

namespace {

/// The edit distance in bytes: insertions, deletions, replacements and transpositions.
std::size_t Distance(std::string_view left, std::string_view right) {
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
    constexpr std::size_t longest = 100; // limits the quadratic edit distance
    if (word.size() > longest) {
        return nullptr;
    }
    const std::string folded = FoldCase(word);
    const std::string* nearest = nullptr;
    std::size_t best = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : known) {
        const std::size_t distance = Distance(folded, FoldCase(candidate));
        if (distance < best) {
            best = distance;
            nearest = &candidate;
        }
    }
    return nearest;
}

std::string Suggestion(std::string_view word, std::span<const std::string> known) {
    const std::string* nearest = NearestWord(word, known);
    return nearest == nullptr ? std::string() : fmt::format("; did you mean \"{}\"?", *nearest);
}

} // namespace qel::engine
