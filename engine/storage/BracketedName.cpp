#include "qel/engine/BracketedName.h"

namespace qel::engine {

void AppendBracketed(std::string_view name, std::string& text) {
    text += '[';
    std::size_t start = 0;
    for (std::size_t at = name.find(']'); at != std::string_view::npos; at = name.find(']', start)) {
        text.append(name, start, at + 1 - start).append("]");
        start = at + 1;
    }
    text.append(name, start).append("]");
}

std::string BracketedName(std::string_view name) {
    std::string text;
    text.reserve(name.size() + 2);
    AppendBracketed(name, text);
    return text;
}

} // namespace qel::engine
