#include "lang/LangTable.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace qel {

namespace {

constexpr std::int32_t noCurrentRow = 3021;
constexpr std::int32_t itemNotFound = 3265;
constexpr std::size_t textColumn = 2;

std::size_t ColumnNamed(const PersistedTable& table, const char* name) {
    const auto found =
        std::find_if(table.columns.begin(), table.columns.end(),
                     [&](const std::string& column) { return EqualIgnoringCase(column, name); });
    if (found == table.columns.end()) {
        throw AutomationError(itemNotFound, fmt::format("The language table has no column '{}'.", name));
    }
    return static_cast<std::size_t>(found - table.columns.begin());
}

std::string TextOf(const Variant& value) { return value.Is<Null>() ? std::string() : ToText(value, {}); }

std::int32_t WholeNumber(const Variant& value, const char* column, std::size_t row) {
    const std::string text = TextOf(value);
    const std::string_view digits = Trimmed(text);
    std::int32_t number = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (failure != std::errc() || end != digits.data() + digits.size()) {
        throw AutomationError(
            ErrorNumber::TypeMismatch,
            fmt::format("Row {} of the language table: '{}' in column '{}' is not a whole number.", row + 1,
                        text, column));
    }
    return number;
}

} // namespace

std::vector<LangRow> LangRowsOf(const PersistedTable& table) {
    const auto language = ColumnNamed(table, "lId");
    const auto number = ColumnNamed(table, "sId");
    if (table.columns.size() <= textColumn) {
        throw AutomationError(itemNotFound, "The language table has no third column for the texts.");
    }
    std::vector<LangRow> rows;
    rows.reserve(table.rows.size());
    for (const auto& row : table.rows) {
        rows.push_back({WholeNumber(row[language], "lId", rows.size()),
                        WholeNumber(row[number], "sId", rows.size()), TextOf(row[textColumn])});
    }
    return rows;
}

LangTable::LangTable(std::vector<LangRow> rows) : rows_(std::move(rows)) {
    if (rows_.empty()) {
        throw AutomationError(noCurrentRow, "The language table has no rows.");
    }
}

std::optional<std::string> LangTable::Find(std::int32_t number) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const LangRow& row) {
        return row.language == language_ && row.number == number;
    });
    return found == rows_.end() ? std::nullopt : std::optional(found->text);
}

} // namespace qel
