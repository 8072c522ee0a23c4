#include "engine/build/PackedLayout.h"

#include <algorithm>
#include <numeric>

namespace qel::engine {

void PackKeyColumns(std::vector<KeyColumn>& columns) {
    std::vector<std::size_t> order(columns.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return columns[left].Bits() > columns[right].Bits();
    });
    constexpr unsigned byteBits = 8;
    std::vector<unsigned> used; // number of bits, by packed column
    for (const std::size_t index : order) {
        KeyColumn& column = columns[index];
        const unsigned bits = column.Bits();
        const bool isNarrow = bits <= narrowBits;
        const auto shared = std::find_if(
            used.begin(), used.end(), [&](unsigned taken) { return isNarrow && taken + bits <= byteBits; });
        column.packedColumn = static_cast<std::uint16_t>(shared - used.begin());
        column.width = bits <= byteBits ? 1 : bits <= 2 * byteBits ? 2 : 4;
        column.shift = 0;
        if (shared == used.end()) {
            used.push_back(isNarrow ? bits : column.width * byteBits);
        } else if (bits > 0) { // a column of a single code has no bits, and the shared byte may be full
            column.shift = static_cast<std::uint8_t>(*shared);
            *shared += bits;
        }
    }
}

} // namespace qel::engine
