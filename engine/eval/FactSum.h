#pragma once

#include <cstdint>

namespace qel::engine {

struct FactSum {
    std::int64_t sum = 0;   ///< of stored values; 0 for a count measure
    std::uint64_t rows = 0; ///< exact for a count measure; otherwise only tells zero from non-zero
};

} // namespace qel::engine
