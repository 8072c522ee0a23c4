#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qel {

struct IniEntry {
    std::string section, key;
};

/// The number (from 1) of the first line that the library would misread: a heading without its end
/// or name, or a line with a control character inside. None when there is none.
std::optional<std::size_t> FirstBrokenLine(std::string_view text);

/// Compares a profile file's text before and after one entry was set: the number (from 1) of the first line
/// that is not there any more, blanks around its parts aside. Blank lines, the headings of sections and the
/// entry itself may go. None when nothing is lost.
std::optional<std::size_t> FirstLineLost(std::string_view before, std::string_view after,
                                         const IniEntry& changed);

} // namespace qel
