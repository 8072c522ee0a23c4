#include "cli/LinesOutput.h"

#include "cli/OutputFields.h"
#include "cli/TextTable.h"
#include "lines/ColumnDecimals.h"
#include "platform/value/ValueText.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace qel {

namespace {

std::string TextOf(const Variant& value) { return value.Is<Null>() ? std::string() : ValueText(value); }

/// The number as NumberText has it, with zeros up to that many decimals.
std::string PaddedNumber(double number, int decimals) {
    std::string text = NumberText(number);
    const bool isPlain = text.find_first_not_of("-0123456789.") == std::string::npos;
    if (decimals <= 0 || !isPlain) {
        return text;
    }
    auto point = text.find('.');
    if (point == std::string::npos) {
        point = text.size();
        text += '.';
    }
    text.resize(std::max(text.size(), point + 1 + static_cast<std::size_t>(decimals)), '0');
    return text;
}

} // namespace

void PrintRowsAsTable(const Rowset& rows, std::ostream& output) {
    TextTable table;
    std::vector<std::optional<int>> decimals;
    for (std::size_t field = 0; field < rows.fields.size(); ++field) {
        decimals.push_back(ColumnDecimals(rows.rows, field));
    }
    const auto firstNumber =
        std::find_if(decimals.begin(), decimals.end(), [](const auto& most) { return most.has_value(); });
    table.leftColumns = static_cast<std::size_t>(firstNumber - decimals.begin());
    table.lines.push_back(rows.fields);
    for (const auto& row : rows.rows) {
        auto& line = table.lines.emplace_back();
        for (std::size_t field = 0; field < row.size(); ++field) {
            line.push_back(row[field].Is<double>()
                               ? PaddedNumber(row[field].As<double>(), decimals[field].value_or(0))
                               : TextOf(row[field]));
        }
    }
    PrintTable(table, output);
}

void PrintRowsAsCsv(const Rowset& rows, std::ostream& output) {
    if (!rows.fields.empty()) {
        PrintCsvLine(rows.fields, output);
    }
    for (const auto& row : rows.rows) {
        std::vector<std::string> texts(row.size());
        std::transform(row.begin(), row.end(), texts.begin(), TextOf);
        PrintCsvLine(texts, output);
    }
}

nlohmann::ordered_json RowsJson(const Rowset& rows) {
    nlohmann::ordered_json document;
    document["columns"] = rows.fields;
    document["rows"] = nlohmann::ordered_json::array();
    for (const auto& row : rows.rows) {
        auto values = nlohmann::ordered_json::array();
        for (const Variant& value : row) {
            values.push_back(ValueJson(value));
        }
        document["rows"].push_back(std::move(values));
    }
    document["total"] = rows.total ? nlohmann::ordered_json(*rows.total) : nlohmann::ordered_json();
    return document;
}

} // namespace qel
