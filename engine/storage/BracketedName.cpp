#include "engine/storage/BracketedName.h"

namespace qel::engine {

std::string BracketedName(std::string_view name) {
    std::string text = "[";
    for (const char c : name) {
        if (c == ']')
            text += ']';
        text += c;
    }
    text += ']';
    return text;
}

} // namespace qel::engine
