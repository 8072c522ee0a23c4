#include "engine/build/Suggestion.h"

#include "engine/text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace qel::engine {

namespace {

/// Levenshtein's distance in bytes.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

} // namespace

std::string Suggestion(std::string_view word, std::span<const std::string> known) {
    constexpr std::size_t longest = 100; // longer than any word that a person mistypes
    if (word.size() > longest)
        return {};
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
    return nearest == nullptr ? std::string() : fmt::format("; did you mean \"{}\"?", *nearest);
}

} // namespace qel::engine
