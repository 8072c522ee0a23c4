#pragma once

#include "engine/build/Definition.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace qel::engine {

/// What a text says as an amount.
struct ParsedAmount {
    std::optional<std::int64_t> value; ///< none when the text is no amount, or one that 63 bits do not hold
    bool isTooLarge = false;           ///< an amount, but one that 63 bits do not hold
};

/// An amount times ten to the power of `decimals`, exactly. Understands a sign at either end or parentheses
/// for a negative amount, the format's decimal sign and its thousands sign between groups of three, no-break
/// and thin blanks as blanks, and passes over marks of direction. Empty text is 0. None for any other text
/// and for more decimals than there are (zeros aside).
ParsedAmount ParseAmount(std::string_view text, const CsvFormat& format, std::uint8_t decimals);

} // namespace qel::engine
