#include "platform/dialog/calc/AccessKey.h"

#include "text/CaseFold.h"

namespace qel::office {

namespace {

/// The bytes of the character that begins at `at`.
std::string_view CharacterAt(std::string_view text, std::size_t at) {
    std::size_t end = at + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        ++end;
    }
    return text.substr(at, end - at);
}

} // namespace

std::string WithAccessKey(std::string_view caption, std::string_view letters) {
    for (std::size_t i = 0; i < letters.size(); i += CharacterAt(letters, i).size()) {
        for (std::size_t at = 0; at < caption.size(); at += CharacterAt(caption, at).size()) {
            if (EqualIgnoringCase(CharacterAt(caption, at), CharacterAt(letters, i))) {
                return std::string(caption.substr(0, at)) + "~" + std::string(caption.substr(at));
            }
        }
    }
    return std::string(caption);
}

} // namespace qel::office
