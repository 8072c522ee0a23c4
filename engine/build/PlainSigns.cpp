#include "engine/build/PlainSigns.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qel::engine {

bool IsAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
}

std::string WithPlainSigns(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 9> signs = {{
        {"\xC2\xA0", " "},     // no-break space
        {"\xE2\x80\xAF", " "}, // narrow no-break space
        {"\xE2\x80\x89", " "}, // thin space
        {"\xE2\x88\x92", "-"}, // minus
        {"\xE2\x80\x99", "'"}, // apostrophe
        {"\xE2\x80\x8E", ""},  // left-to-right mark
        {"\xE2\x80\x8F", ""},  // right-to-left mark
        {"\xE2\x81\xA6", ""},  // left-to-right isolate
        {"\xE2\x81\xA9", ""},  // pop directional isolate
    }};
    std::string plain;
    while (!text.empty()) {
        std::string_view replacement = text.substr(0, 1);
        std::size_t length = 1;
        for (const auto& [sign, by] : signs) {
            if (text.substr(0, sign.size()) == sign) {
                replacement = by;
                length = sign.size();
            }
        }
        plain += replacement;
        text.remove_prefix(length);
    }
    return plain;
}

} // namespace qel::engine
