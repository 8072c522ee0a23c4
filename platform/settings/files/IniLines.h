#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qel {

struct IniEntry {
    std::string section, key;
};

/// The number (from 1) of the first line that the library would misread: an incomplete heading, or a line
/// with a control character. Nullopt when there is no such line.
[[nodiscard]] std::optional<std::size_t> FirstBrokenLine(std::string_view text);

/// Compares a profile file's text before and after an entry was set: the number (from 1) of the first line
/// that got lost, blanks around its parts ignored. Blank lines, headings and the entry itself do not count.
/// Nullopt when nothing is lost.
[[nodiscard]] std::optional<std::size_t> FirstLineLost(std::string_view before, std::string_view after,
                                                       const IniEntry& changed);

} // namespace qel
