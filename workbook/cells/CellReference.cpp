#include "workbook/cells/CellReference.h"

#include "text/CellName.h"
#include "text/Text.h"

#include <algorithm>

namespace qel {

namespace {

constexpr std::uint32_t letters = 26;
constexpr std::uint32_t mostColumns = 16384, mostRows = 1048576;

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsWord(char c) {
    return IsLetter(c) || IsDigit(c) || c == '_' || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

/// A reference's column and row as they are written.
struct WrittenCell {
    CellPlace place;
    bool columnStays = false, rowStays = false; ///< with "$"
    std::size_t size = 0;                       ///< of the text
};

std::optional<WrittenCell> ReadWrittenCell(std::string_view text) {
    WrittenCell cell;
    std::size_t at = 0;
    const auto takeDollar = [&] { return at < text.size() && text[at] == '$' ? (++at, true) : false; };
    cell.columnStays = takeDollar();
    std::uint32_t column = 0, row = 0;
    for (; at < text.size() && IsLetter(text[at]) && column < mostColumns; ++at) {
        column = column * letters + static_cast<std::uint32_t>((text[at] | 0x20) - 'a') + 1;
    }
    cell.rowStays = takeDollar();
    for (; at < text.size() && IsDigit(text[at]) && row <= mostRows; ++at) {
        row = row * 10 + static_cast<std::uint32_t>(text[at] - '0');
    }
    if (column == 0 || row == 0 || column > mostColumns || row > mostRows) {
        return std::nullopt;
    }
    cell.place = {row - 1, column - 1};
    cell.size = at;
    return cell;
}

/// The sheet's name before `separator`, in quotes or not; it is taken from the text.
std::optional<std::string> TakeSheet(std::string_view& text, char separator) {
    if (!text.starts_with('\'')) {
        const auto end = text.find(separator);
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        std::string name(text.substr(0, end));
        text.remove_prefix(end + 1);
        return name;
    }
    std::string name;
    for (std::size_t at = 1; at < text.size(); ++at) {
        const bool isQuote = text[at] == '\'';
        if (isQuote && text.substr(at + 1).starts_with('\'')) {
            ++at;
        } else if (isQuote) {
            if (!text.substr(at + 1).starts_with(separator)) {
                return std::nullopt;
            }
            text.remove_prefix(at + 2);
            return name;
        }
        name += text[at];
    }
    return std::nullopt;
}

std::optional<CellRange> ReadCells(std::string_view text, CellRange range, bool isOpenDocument) {
    const auto first = ReadCellName(text, text);
    if (!first) {
        return std::nullopt;
    }
    range.first = range.last = *first;
    if (text.starts_with(':')) {
        text.remove_prefix(isOpenDocument && text.substr(1).starts_with('.') ? 2 : 1);
        const auto last = ReadCellName(text, text);
        if (!last) {
            return std::nullopt;
        }
        range.first = {std::min(first->row, last->row), std::min(first->column, last->column)};
        range.last = {std::max(first->row, last->row), std::max(first->column, last->column)};
    }
    return text.empty() ? std::optional(range) : std::nullopt;
}

std::optional<CellRange> ReadOpenDocumentReference(std::string_view text) {
    const bool isInFile = text.starts_with('[') && text.ends_with(']');
    if (isInFile) {
        text = text.substr(1, text.size() - 2);
    }
    CellRange range;
    if (isInFile && text.find('#') != std::string_view::npos) { // 'file:///…'#$Sheet1.A1
        range.isElsewhere = true;
        return range;
    }
    if (text.starts_with('$')) {
        text.remove_prefix(1);
    }
    const auto sheet = TakeSheet(text, '.');
    if (!sheet && isInFile) {
        return std::nullopt;
    }
    range.sheet = sheet.value_or("");
    return ReadCells(text, range, true);
}

} // namespace

std::string CellName(CellPlace place) { return CellName(place.row + 1, place.column + 1); }

std::optional<CellPlace> ReadCellName(std::string_view text, std::string_view& rest) {
    const auto cell = ReadWrittenCell(text);
    if (!cell) {
        return std::nullopt;
    }
    rest = text.substr(cell->size);
    return cell->place;
}

std::optional<CellRange> ReadReference(std::string_view text, bool isOpenDocument) {
    if (isOpenDocument) {
        return ReadOpenDocumentReference(text);
    }
    CellRange range;
    if (auto sheet = TakeSheet(text, '!')) {
        range.sheet = std::move(*sheet);
        range.isElsewhere = range.sheet.find('[') != std::string::npos;
    }
    return ReadCells(text, range, false);
}

std::string MovedFormula(std::string_view formula, std::int64_t down, std::int64_t right) {
    std::string moved;
    for (std::size_t at = 0; at < formula.size();) {
        const char c = formula[at];
        std::size_t end = at + 1;
        if (c == '"' || c == '\'') {
            end = std::min(formula.find(c, end), formula.size() - 1) + 1;
        } else if (IsWord(c) || c == '$') {
            while (end < formula.size() && (IsWord(formula[end]) || formula[end] == '$')) {
                ++end;
            }
            const auto cell = ReadWrittenCell(formula.substr(at, end - at));
            const char next = end < formula.size() ? formula[end] : ' ';
            if (cell && cell->size == end - at && next != '(' && next != '!') {
                const auto column = std::int64_t{cell->place.column} + (cell->columnStays ? 0 : right);
                const auto row = std::int64_t{cell->place.row} + (cell->rowStays ? 0 : down);
                moved +=
                    row < 0 || column < 0
                        ? "#REF!"
                        : CellName({static_cast<std::uint32_t>(row), static_cast<std::uint32_t>(column)});
                at = end;
                continue;
            }
        }
        moved += formula.substr(at, end - at);
        at = end;
    }
    return moved;
}

} // namespace qel
