#include "platform/settings/files/IniLines.h"

#include "text/CaseFold.h"

#include <algorithm>
#include <map>
#include <vector>

namespace qel {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view WithoutSpace(std::string_view text) {
    constexpr const char* space = " \t\r\v\f";
    const auto first = text.find_first_not_of(space);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.push_back(WithoutSpace(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool IsComment(std::string_view line) { return line.front() == ';' || line.front() == '#'; }

/// The section's name, if the line is a heading.
std::optional<std::string_view> SectionOf(std::string_view line) {
    if (line.front() != '[' || line.find(']') != line.size() - 1) {
        return std::nullopt;
    }
    return WithoutSpace(line.substr(1, line.size() - 2));
}

std::string_view KeyOf(std::string_view line) { return WithoutSpace(line.substr(0, line.find('='))); }

/// The line with no blanks around its equals sign.
std::string Normalised(std::string_view line) {
    const auto equals = line.find('=');
    if (IsComment(line) || equals == std::string_view::npos) {
        return std::string(line);
    }
    return std::string(KeyOf(line)) + '=' + std::string(WithoutSpace(line.substr(equals + 1)));
}

/// A control character, such as a carriage return inside the line. No line of settings has one.
bool IsStray(char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; }

/// How often each line of entries, comments and junk occurs.
std::map<std::string, int> Count(std::string_view text) {
    std::map<std::string, int> counts;
    for (const auto line : LinesOf(text)) {
        if (!line.empty() && !SectionOf(line)) {
            ++counts[Normalised(line)];
        }
    }
    return counts;
}

} // namespace

std::optional<std::size_t> FirstBrokenLine(std::string_view text) {
    std::size_t number = 0;
    for (const auto line : LinesOf(text)) {
        ++number;
        const auto section = line.empty() ? std::nullopt : SectionOf(line);
        const bool isHeading = !line.empty() && line.front() == '[';
        const bool hasStray = std::any_of(line.begin(), line.end(), IsStray);
        if (hasStray || (isHeading && section.value_or("").empty())) {
            return number;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> FirstLineLost(std::string_view before, std::string_view after,
                                         const IniEntry& changed) {
    auto left = Count(after);
    std::string_view section;
    std::size_t number = 0;
    for (const auto line : LinesOf(before)) {
        ++number;
        if (line.empty()) {
            continue;
        }
        if (const auto name = SectionOf(line)) {
            section = *name;
            continue;
        }
        const bool isChanged = !IsComment(line) && EqualIgnoringCase(section, changed.section) &&
                               EqualIgnoringCase(KeyOf(line), changed.key);
        if (!isChanged && --left[Normalised(line)] < 0) {
            return number;
        }
    }
    return std::nullopt;
}

} // namespace qel
