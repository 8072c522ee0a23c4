#include "platform/dialog/win32/AccessKey.h"

#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>

namespace qel::windows {

namespace {

/// The bytes of the character that begins at `at`.
std::string_view CharacterAt(std::string_view text, std::size_t at) {
    std::size_t end = at + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        ++end;
    }
    return text.substr(at, end - at);
}

std::size_t FindLetter(std::string_view caption, std::string_view letter) {
    for (std::size_t at = 0; at < caption.size(); at += CharacterAt(caption, at).size()) {
        if (EqualIgnoringCase(CharacterAt(caption, at), letter)) {
            return at;
        }
    }
    return std::string_view::npos;
}

} // namespace

std::string WithAccessKey(std::string_view caption, std::string_view letters) {
    auto key = std::string_view::npos;
    for (std::size_t at = 0; at < letters.size() && key == std::string_view::npos;) {
        const std::string_view letter = CharacterAt(letters, at);
        key = FindLetter(caption, letter);
        at += letter.size();
    }
    std::string before = ReplaceAll(caption.substr(0, std::min(key, caption.size())), "&", "&&");
    if (key == std::string_view::npos) {
        return before;
    }
    return before + "&" + ReplaceAll(caption.substr(key), "&", "&&");
}

} // namespace qel::windows
