#pragma once

#include <cstdint>

namespace qel::engine {

struct FactSum {
    std::int64_t sum = 0;   ///< of stored values; 0 for a count measure
    std::uint64_t rows = 0; ///< at least 1 when there are any; how many, for a count measure
};

} // namespace qel::engine
