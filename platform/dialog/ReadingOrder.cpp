#include "platform/dialog/ReadingOrder.h"

#include "text/Text.h"

#include <algorithm>

namespace qel {

namespace {

constexpr std::string_view leftToRight = "\xE2\x80\xAA", rightToLeft = "\xE2\x80\xAB", end = "\xE2\x80\xAC";

/// The character that begins at `at`, which moves behind it. Texts are UTF-8.
char32_t TakeCharacter(std::string_view text, std::size_t& at) {
    const auto first = static_cast<unsigned char>(text[at++]);
    char32_t character = first < 0x80U   ? first
                         : first < 0xE0U ? first & 0x1FU
                         : first < 0xF0U ? first & 0x0FU
                                         : first & 0x07U;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) {
        character = (character << 6U) | (static_cast<unsigned char>(text[at++]) & 0x3FU);
    }
    return character;
}

/// Hebrew, Arabic and their neighbours.
bool IsRightToLeft(char32_t c) {
    return (c >= 0x590 && c <= 0x8FF) || (c >= 0xFB1D && c <= 0xFDFF) || (c >= 0xFE70 && c <= 0xFEFC);
}

bool IsLeftToRight(char32_t c) {
    constexpr char32_t signs = 0x2000, letters = 0x2C00; // between them, signs without a direction
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           (c >= 0xC0 && c < signs && c != 0xD7 && c != 0xF7 && !IsRightToLeft(c)) ||
           (c >= letters && !IsRightToLeft(c));
}

std::string Embedded(std::string_view text, bool isRightToLeft) {
    std::string embedded(isRightToLeft ? rightToLeft : leftToRight);
    return embedded.append(text).append(end);
}

} // namespace

bool BeginsRightToLeft(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const char32_t character = TakeCharacter(text, at);
        if (IsRightToLeft(character) || IsLeftToRight(character)) {
            return IsRightToLeft(character);
        }
    }
    return false;
}

std::string InOwnDirection(std::string_view text) {
    return text.empty() ? std::string() : Embedded(text, BeginsRightToLeft(text));
}

std::string LineInOwnDirection(std::string_view text) {
    const std::string marked = InOwnDirection(text);
    return marked.substr(0, marked.size() - std::min(end.size(), marked.size()));
}

std::string LinesInOwnDirection(std::string_view text) {
    if (!BeginsRightToLeft(text)) {
        return std::string(text);
    }
    std::string lines;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t stop = std::min(text.find('\n', start), text.size());
        const std::string_view line = text.substr(start, stop - start);
        lines += line.empty() ? std::string() : Embedded(line, true);
        lines += stop < text.size() ? "\n" : "";
        start = stop + 1;
    }
    return lines;
}

std::string WithoutDirection(std::string_view text) {
    std::string plain(text);
    for (const std::string_view mark : {leftToRight, rightToLeft, end}) {
        plain = ReplaceAll(plain, mark, "");
    }
    return plain;
}

} // namespace qel
