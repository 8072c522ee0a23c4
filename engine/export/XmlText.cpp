#include "engine/export/XmlText.h"

namespace qel::engine {

std::string XmlEscaped(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\n':
            escaped += "&#10;";
            break;
        case '\t':
            escaped += "&#9;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

} // namespace qel::engine
