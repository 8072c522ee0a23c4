#include "support/Wildcard.h"

#include <cstddef>

namespace qel {

namespace {

/// The offset after the UTF-8 character at `at`.
std::size_t AfterCharacter(std::string_view text, std::size_t at) {
    ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) {
        ++at;
    }
    return at;
}

} // namespace

bool MatchesWildcard(std::string_view name, std::string_view pattern) {
    if (pattern == "*.*") {
        return true;
    }
    std::size_t inName = 0;
    std::size_t inPattern = 0;
    // Where to resume when the characters after the last star do not match: the star takes one more byte.
    std::size_t afterStar = std::string_view::npos;
    std::size_t starEnd = 0;
    while (inName < name.size()) {
        const char expected = inPattern < pattern.size() ? pattern[inPattern] : '\0';
        if (expected == '*') {
            afterStar = ++inPattern;
            starEnd = inName;
        } else if (expected == '?') {
            ++inPattern;
            inName = AfterCharacter(name, inName);
        } else if (inPattern < pattern.size() && expected == name[inName]) {
            ++inPattern;
            ++inName;
        } else if (afterStar != std::string_view::npos) {
            inPattern = afterStar;
            inName = ++starEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

} // namespace qel
