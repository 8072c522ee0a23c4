#include "text/CellName.h"

namespace qel {

std::string CellName(std::int64_t row, std::int64_t column) {
    constexpr std::int64_t letters = 26;
    std::string name;
    for (; column > 0; column = (column - 1) / letters) {
        name.insert(name.begin(), static_cast<char>('A' + (column - 1) % letters));
    }
    return name + std::to_string(row);
}

} // namespace qel
