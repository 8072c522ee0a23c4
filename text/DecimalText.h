#pragma once

#include <cstdint>
#include <string>

namespace qel {

/// A number that is stored as a multiple of 10^-decimals: "-1250.05" for -125005 with 2 decimals.
std::string DecimalText(std::int64_t scaled, std::uint8_t decimals);

} // namespace qel
