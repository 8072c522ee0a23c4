#include "text/Text.h"

#include "text/CaseFold.h"

namespace qel {

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void Trim(std::string& text) {
    text.erase(text.find_last_not_of(' ') + 1); // npos + 1 is 0: a text of blanks alone goes whole
    text.erase(0, text.find_first_not_of(' '));
}

bool ContainsIgnoringCase(std::string_view text, std::string_view part) {
    return FoldCase(text).find(FoldCase(part)) != std::string::npos;
}

std::size_t LengthInUtf16(std::string_view text) {
    std::size_t length = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = (byte & 0xC0U) == 0x80U;
        const bool startsSurrogatePair = byte >= 0xF0U;
        length += continues ? 0 : startsSurrogatePair ? 2 : 1;
    }
    return length;
}

std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with) {
    if (what.empty()) {
        return std::string(text);
    }
    std::string replaced;
    replaced.reserve(text.size());
    std::size_t start = 0;
    for (std::size_t at = text.find(what); at != std::string_view::npos; at = text.find(what, start)) {
        replaced.append(text, start, at - start).append(with);
        start = at + what.size();
    }
    return replaced.append(text, start);
}

} // namespace qel
