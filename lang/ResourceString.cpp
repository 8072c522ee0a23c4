#include "lang/StringTable.h"

#include <algorithm>

namespace qel {

std::optional<std::string> FindResourceString(std::int32_t number, std::int16_t language) {
    const auto table = StringTable();
    const auto found =
        std::lower_bound(table.begin(), table.end(), number,
                         [](const auto& entry, std::int32_t wanted) { return entry.number < wanted; });
    if (found == table.end() || found->number != number) {
        return std::nullopt;
    }
    return language == Language::Hebrew ? found->hebrew : found->english;
}

std::string ResourceString(std::int32_t number, std::int16_t language) {
    return FindResourceString(number, language).value_or(std::to_string(number));
}

} // namespace qel
