#include "cli/CellsetTable.h"

#include <regex>

namespace qel {

namespace {

std::vector<Tuple> ReadAxis(const Cellset& cellset, std::int32_t axis) {
    std::vector<Tuple> positions(static_cast<std::size_t>(cellset.PositionCount(axis)));
    for (std::int32_t position = 0; position < cellset.PositionCount(axis); ++position) {
        for (std::int32_t i = 0; i < cellset.MemberCount(axis, position); ++i) {
            positions[static_cast<std::size_t>(position)].push_back(cellset.MemberAt(axis, position, i));
        }
    }
    return positions;
}

/// The combinations of the rows and the axes behind them.
std::vector<Tuple> CombinedRows(const std::vector<std::vector<Tuple>>& axes) {
    std::vector<Tuple> rows{Tuple{}};
    for (std::size_t axis = axes.size(); axis-- > 1;) {
        std::vector<Tuple> longer;
        longer.reserve(rows.size() * axes[axis].size());
        for (const auto& row : rows) {
            for (const auto& position : axes[axis]) {
                auto& tuple = longer.emplace_back(row);
                tuple.insert(tuple.end(), position.begin(), position.end());
            }
        }
        rows = std::move(longer);
    }
    return rows;
}

void ReadRow(const Cellset& cellset, std::vector<std::int32_t>& place, CellsetTable& grid) {
    auto& cells = grid.cells.emplace_back();
    auto& exact = grid.exact.emplace_back();
    for (std::size_t column = 0; column < grid.columns.size(); ++column) {
        if (!place.empty()) {
            place[0] = static_cast<std::int32_t>(column);
        }
        cells.push_back(cellset.Value(place));
        exact.push_back(cellset.ExactText(place));
    }
}

/// Moves to the next row, the axis behind the columns varying fastest.
void MoveToNextRow(const std::vector<std::vector<Tuple>>& axes, std::vector<std::int32_t>& place) {
    for (std::size_t axis = 1; axis < axes.size(); ++axis) {
        if (++place[axis] < static_cast<std::int32_t>(axes[axis].size())) {
            return;
        }
        place[axis] = 0;
    }
}

/// The key of a calendar's quarter, month or day: 2024-Q1, 2024-03, 2024-03-31.
bool IsPartOfYear(const std::string& key) {
    static const std::regex pattern(R"(\d{4}-(Q[1-4]|\d\d(-\d\d)?))");
    return std::regex_match(key, pattern);
}

std::string KeyOf(const CellsetMember& member) {
    if (!member.key.empty()) {
        return member.key;
    }
    const auto start = member.uniqueName.rfind(".&[");
    if (start == std::string::npos || !member.uniqueName.ends_with(']')) {
        return member.name;
    }
    std::string key = member.uniqueName.substr(start + 3);
    key.pop_back();
    for (std::size_t at = 0; (at = key.find("]]", at)) != std::string::npos; ++at) {
        key.erase(at, 1);
    }
    return key;
}

} // namespace

CellsetTable ReadGrid(const Cellset& cellset) {
    std::vector<std::vector<Tuple>> axes;
    axes.reserve(static_cast<std::size_t>(cellset.AxisCount()));
    for (std::int32_t axis = 0; axis < cellset.AxisCount(); ++axis) {
        axes.push_back(ReadAxis(cellset, axis));
    }
    CellsetTable grid;
    grid.axisCount = axes.size();
    grid.columns = axes.empty() ? std::vector<Tuple>{Tuple{}} : axes.front();
    grid.rows = CombinedRows(axes);
    grid.cells.reserve(grid.rows.size());
    std::vector<std::int32_t> place(axes.size());
    for (std::size_t row = 0; row < grid.rows.size(); ++row) {
        ReadRow(cellset, place, grid);
        MoveToNextRow(axes, place);
    }
    if (axes.size() > 2) {
        grid.combined.assign(axes.begin() + 1, axes.end());
    }
    return grid;
}

std::string TextOf(const CellsetMember& member, MemberText text) {
    switch (text) {
    case MemberText::Name:
        return member.name;
    case MemberText::UniqueName:
        return member.uniqueName;
    case MemberText::Key:
        return KeyOf(member);
    case MemberText::Caption:
        break;
    }
    const auto& caption = member.caption ? *member.caption : member.name;
    return caption == member.name && IsPartOfYear(member.key) ? member.key : caption;
}

} // namespace qel
