#pragma once

#include "engine/build/Definition.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace qel::engine {

/// Parses a date: three numbers in the format's order, separated by "-", "/", "." or blanks, or eight digits
/// with the year first. When a four-digit year comes first, the order is year, month, day in every format;
/// Iso accepts nothing else. Two numbers are a month and its year and mean its first day. Two-digit years are
/// 1930 to 2029. A month may have its English or Hebrew name, whose place shows the order. A time of day
/// after the date is ignored. Nothing for any other text.
std::optional<std::chrono::sys_days> ParseDate(std::string_view text, DateFormat format);

/// "2024-03-31".
std::string FormatDate(std::chrono::sys_days day);

/// "; set \"dates\": \"dmy\" in the table …" with each format that fits the text; empty when none does.
std::string DateRemedy(std::string_view text, std::string_view table);

/// "a date such as 31/12/2024", for messages.
std::string_view ExpectedDate(DateFormat format);

} // namespace qel::engine
