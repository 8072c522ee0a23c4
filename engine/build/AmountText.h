#pragma once

#include "engine/build/Definition.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qel::engine {

/// The result of parsing an amount.
struct ParsedAmount {
    std::optional<std::int64_t> value; ///< nothing for an invalid amount, or one beyond 63 bits
    bool isTooLarge = false;           ///< a valid amount beyond 63 bits
    std::uint8_t currency = 0;         ///< of the sign of a currency beside it, see CurrencySign
};

/// Parses an amount and scales it by 10^decimals, exactly. Accepts a leading or trailing sign, parentheses
/// for a negative amount, the format's decimal and thousands signs (the latter only between groups of three
/// digits), no-break and thin spaces, one currency before or behind it ($, €, £, ₪, or as a word such as ILS,
/// NIS, ש"ח); ignores directional marks. An empty text is 0. Invalid when there are more decimals than
/// `decimals`, unless they are zeros.
ParsedAmount ParseAmount(std::string_view text, const CsvFormat& format, std::uint8_t decimals);

/// "$" for 1 and so on.
std::string_view CurrencySign(std::uint8_t currency);

/// "; set …" with the settings by which the text is an amount; empty when there are none.
std::string AmountRemedy(std::string_view text, const TableDefinition& table, std::uint8_t decimals);

} // namespace qel::engine
