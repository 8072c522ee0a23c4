#pragma once

#include "engine/build/Definition.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace qel::engine {

/// An amount times ten to the power of `decimals`, exactly. Understands a sign at either end or parentheses
/// for a negative amount, the format's decimal sign and its thousands sign between groups of three, no-break
/// and thin blanks as blanks, and passes over marks of direction. Empty text is 0. None for any other text,
/// for more decimals than there are (zeros aside) and for an amount that 63 bits do not hold.
std::optional<std::int64_t> ParseAmount(std::string_view text, const CsvFormat& format,
                                        std::uint8_t decimals);

} // namespace qel::engine
