#include "cli/CellsetOutput.h"

#include "cli/OutputFields.h"
#include "cli/TextTable.h"
#include "platform/value/ValueText.h"

#include <nlohmann/json.hpp>

namespace qel {

namespace {

std::size_t TupleSize(const std::vector<Tuple>& positions) {
    return positions.empty() ? 0 : positions.front().size();
}

std::string JoinedTexts(const Tuple& tuple, MemberText names) {
    std::string text;
    for (const auto& member : tuple) {
        text += (text.empty() ? "" : " / ") + TextOf(member, names);
    }
    return text;
}

std::vector<std::string> RowHeadings(const CellsetTable& grid) {
    std::vector<std::string> headings;
    if (!grid.rows.empty()) {
        for (const auto& member : grid.rows.front()) {
            headings.push_back(member.levelName);
        }
    }
    return headings;
}

nlohmann::ordered_json AxisJson(const std::vector<Tuple>& positions) {
    auto axis = nlohmann::ordered_json::array();
    for (const auto& tuple : positions) {
        auto members = nlohmann::ordered_json::array();
        for (const auto& member : tuple) {
            nlohmann::ordered_json entry({{"name", member.name},
                                          {"caption", member.caption.value_or(member.name)},
                                          {"uniqueName", member.uniqueName},
                                          {"level", member.levelName},
                                          {"depth", member.levelDepth}});
            if (!member.key.empty()) {
                entry["key"] = member.key;
            }
            members.push_back(std::move(entry));
        }
        axis.push_back({{"members", std::move(members)}});
    }
    return axis;
}

nlohmann::ordered_json RowJson(const std::vector<Variant>& row) {
    auto cells = nlohmann::ordered_json::array();
    for (const auto& cell : row) {
        cells.push_back(ValueJson(cell));
    }
    return cells;
}

/// The rows from `row` on, in an array for every position of the combined axes up to `axis`.
nlohmann::ordered_json CombinedJson(const CellsetTable& grid, std::size_t axis, std::size_t& row) {
    auto cells = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < grid.combined[axis].size() && row < grid.cells.size(); ++i) {
        cells.push_back(axis > 0 ? CombinedJson(grid, axis - 1, row) : RowJson(grid.cells[row++]));
    }
    return cells;
}

nlohmann::ordered_json CellsJson(const CellsetTable& grid) {
    std::size_t row = 0;
    if (!grid.combined.empty()) {
        return CombinedJson(grid, grid.combined.size() - 1, row);
    }
    auto cells = nlohmann::ordered_json::array();
    for (const auto& each : grid.cells) {
        cells.push_back(RowJson(each));
    }
    return cells;
}

/// The row's members, then its cells.
std::vector<std::string> RowTexts(const CellsetTable& grid, std::size_t row, MemberText names) {
    std::vector<std::string> texts;
    for (const auto& member : grid.rows[row]) {
        texts.push_back(TextOf(member, names));
    }
    for (std::size_t column = 0; column < grid.cells[row].size(); ++column) {
        const bool isExact = !grid.exact.empty() && grid.exact[row][column];
        texts.push_back(isExact ? *grid.exact[row][column] : ValueText(grid.cells[row][column]));
    }
    return texts;
}

} // namespace

void PrintAsTable(const CellsetTable& grid, std::ostream& output, MemberText names) {
    TextTable table;
    table.leftColumns = TupleSize(grid.rows);
    const auto rowHeadings = RowHeadings(grid);
    const auto headingLines = TupleSize(grid.columns);
    for (std::size_t i = 0; i < headingLines; ++i) {
        const bool isLast = i + 1 == headingLines;
        auto line = isLast ? rowHeadings : std::vector<std::string>(rowHeadings.size());
        for (const auto& tuple : grid.columns) {
            line.push_back(TextOf(tuple[i], names));
        }
        table.lines.push_back(std::move(line));
    }
    for (std::size_t row = 0; row < grid.rows.size(); ++row) {
        table.lines.push_back(RowTexts(grid, row, names));
    }
    PrintTable(table, output);
}

void PrintAsCsv(const CellsetTable& grid, std::ostream& output, MemberText names) {
    auto headings = RowHeadings(grid);
    for (const auto& tuple : grid.columns) {
        headings.push_back(JoinedTexts(tuple, names));
    }
    if (grid.axisCount > 0) {
        PrintCsvLine(headings, output);
    }
    for (std::size_t row = 0; row < grid.rows.size(); ++row) {
        PrintCsvLine(RowTexts(grid, row, names), output);
    }
}

void PrintAsJson(const CellsetTable& grid, std::ostream& output) {
    nlohmann::ordered_json document;
    document["axes"] = nlohmann::ordered_json::array();
    if (grid.axisCount > 0) {
        document["axes"].push_back(AxisJson(grid.columns));
    }
    if (grid.axisCount > 1 && grid.combined.empty()) {
        document["axes"].push_back(AxisJson(grid.rows));
    }
    for (const auto& axis : grid.combined) {
        document["axes"].push_back(AxisJson(axis));
    }
    document["cells"] = CellsJson(grid);
    PrintJson(document, output);
}

} // namespace qel
