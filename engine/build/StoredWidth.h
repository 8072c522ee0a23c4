#pragma once

#include <cstdint>

namespace qel::engine {

/// The narrowest signed width in bytes for values in the range.
constexpr std::uint8_t ValueWidth(std::int64_t least, std::int64_t most) {
    return least >= INT8_MIN && most <= INT8_MAX     ? std::uint8_t{1}
           : least >= INT16_MIN && most <= INT16_MAX ? std::uint8_t{2}
           : least >= INT32_MIN && most <= INT32_MAX ? std::uint8_t{4}
                                                     : std::uint8_t{8};
}

} // namespace qel::engine
