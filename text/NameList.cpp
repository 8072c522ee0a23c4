#include "text/NameList.h"

namespace qel {

std::string NameList(const std::vector<std::string>& names, std::string_view quote) {
    constexpr std::size_t most = 20;
    std::string list;
    for (std::size_t i = 0; i < names.size() && i < most; ++i) {
        list.append(i == 0 ? "" : ", ").append(quote).append(names[i]).append(quote);
    }
    if (names.size() > most) {
        list += " and " + std::to_string(names.size() - most) + " more";
    }
    return list;
}

} // namespace qel
