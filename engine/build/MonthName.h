#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel::engine {

/// A date with its month's number in the place of the name, such as "15/01/2024".
struct NamedMonth {
    std::string text;
    bool isFirst = false; ///< the month stands before the day
};

/// Replaces the name of a month, in English or Hebrew, whole or in three letters, by its number. Commas,
/// blanks around signs and a time of day are left out. Nothing for a text without such a name.
std::optional<NamedMonth> WithMonthNumber(std::string_view text);

} // namespace qel::engine
