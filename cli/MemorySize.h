#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qel {

/// The least memory that a build takes as its limit.
inline constexpr std::uint64_t leastMemory = std::uint64_t{64} << 20U;

/// The bytes of "512M" or "2G"; nothing for another text, for less than the least and for more than a number
/// holds.
std::optional<std::uint64_t> ParseMemorySize(std::string_view text);

} // namespace qel
