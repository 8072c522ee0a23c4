#pragma once

#include "engine/build/Definition.h"

#include <chrono>
#include <optional>
#include <string_view>

namespace qel::engine {

/// Reads a date: three numbers in the format's order between "-", "/", "." or blanks, or eight digits with
/// the year first; a four-digit year in front is read as year, month, day in every format, and Iso takes no
/// other. Two numbers are a month and its year: its first day. Two-digit years are 1930 to 2029. A time of
/// day behind the date is passed over. None for any other text.
std::optional<std::chrono::sys_days> ParseDate(std::string_view text, DateFormat format);

/// "2024-03-31".
std::string FormatDate(std::chrono::sys_days day);

/// "a date such as 31/12/2024": for messages.
std::string_view ExpectedDate(DateFormat format);

} // namespace qel::engine
