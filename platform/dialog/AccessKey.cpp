#include "platform/dialog/AccessKey.h"

#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>

namespace qel {

namespace {

/// The bytes of the character that begins at `at`.
std::string_view CharacterAt(std::string_view text, std::size_t at) {
    std::size_t end = at + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        ++end;
    }
    return text.substr(at, end - at);
}

std::size_t FindAccessKey(std::string_view caption, std::string_view letters) {
    for (std::size_t i = 0; i < letters.size(); i += CharacterAt(letters, i).size()) {
        for (std::size_t at = 0; at < caption.size(); at += CharacterAt(caption, at).size()) {
            if (EqualIgnoringCase(CharacterAt(caption, at), CharacterAt(letters, i))) {
                return at;
            }
        }
    }
    return std::string_view::npos;
}

} // namespace

std::string WithAccessKey(std::string_view caption, std::string_view letters, std::string_view mark) {
    const std::string doubled = std::string(mark) + std::string(mark);
    const auto key = std::min(FindAccessKey(caption, letters), caption.size());
    const std::string before = ReplaceAll(caption.substr(0, key), mark, doubled);
    return key == caption.size()
               ? before
               : before + std::string(mark) + ReplaceAll(caption.substr(key), mark, doubled);
}

} // namespace qel
