#include "cli/TextTable.h"

#include <algorithm>

namespace qel {

namespace {

struct CodePoint {
    char32_t value;
    std::size_t length;
};

CodePoint CodePointAt(const std::string& text, std::size_t place) {
    const auto byte = [&](std::size_t i) -> char32_t {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const char32_t first = byte(place);
    if (first >= 0xF0) {
        return {(first & 7U) << 18U | (byte(place + 1) & 63U) << 12U | (byte(place + 2) & 63U) << 6U |
                    (byte(place + 3) & 63U),
                4};
    }
    if (first >= 0xE0) {
        return {(first & 15U) << 12U | (byte(place + 1) & 63U) << 6U | (byte(place + 2) & 63U), 3};
    }
    if (first >= 0xC0) {
        return {(first & 31U) << 6U | (byte(place + 1) & 63U), 2};
    }
    return {first, 1};
}

bool TakesNoColumn(char32_t c) {
    const bool isHebrewPoint =
        c >= 0x0591 && c <= 0x05C7 && c != 0x05BE && c != 0x05C0 && c != 0x05C3 && c != 0x05C6;
    const bool isCombining = c >= 0x0300 && c <= 0x036F;
    const bool isFormat = (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
                          (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF;
    return isHebrewPoint || isCombining || isFormat;
}

/// A line break inside a name would tear the table.
std::string OnOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

std::vector<std::size_t> ColumnWidths(const TextTable& table) {
    std::vector<std::size_t> widths;
    for (const auto& line : table.lines) {
        widths.resize(std::max(widths.size(), line.size()));
        for (std::size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], DisplayWidth(line[i]));
        }
    }
    return widths;
}

} // namespace

std::size_t DisplayWidth(const std::string& text) {
    std::size_t width = 0;
    for (std::size_t place = 0; place < text.size();) {
        const auto [value, length] = CodePointAt(text, place);
        width += TakesNoColumn(value) ? 0U : 1U;
        place += length;
    }
    return width;
}

void PrintTable(const TextTable& table, std::ostream& output) {
    const auto widths = ColumnWidths(table);
    for (const auto& line : table.lines) {
        std::string text;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const std::string padding(widths[i] - DisplayWidth(line[i]), ' ');
            text += i == 0 ? "" : "  ";
            text += i < table.leftColumns ? OnOneLine(line[i]) + padding : padding + OnOneLine(line[i]);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        output << text << '\n';
    }
}

} // namespace qel
