#include "cli/CellsetTable.h"

#include "platform/value/AutomationError.h"

#include <fmt/format.h>

namespace qel {

namespace {

std::vector<Tuple> ReadAxis(const Cellset& cellset, std::int32_t axis) {
    if (axis >= cellset.AxisCount()) {
        return {Tuple{}};
    }
    std::vector<Tuple> positions(static_cast<std::size_t>(cellset.PositionCount(axis)));
    for (std::int32_t position = 0; position < cellset.PositionCount(axis); ++position) {
        for (std::int32_t i = 0; i < cellset.MemberCount(axis, position); ++i) {
            positions[static_cast<std::size_t>(position)].push_back(cellset.MemberAt(axis, position, i));
        }
    }
    return positions;
}

std::vector<Variant> ReadRow(const Cellset& cellset, std::int32_t row, std::size_t columns) {
    std::vector<Variant> cells;
    cells.reserve(columns);
    std::vector<std::int32_t> place = {0, row};
    place.resize(static_cast<std::size_t>(cellset.AxisCount()));
    for (std::size_t column = 0; column < columns; ++column) {
        if (!place.empty()) {
            place[0] = static_cast<std::int32_t>(column);
        }
        cells.push_back(cellset.Value(place));
    }
    return cells;
}

} // namespace

CellsetTable ReadGrid(const Cellset& cellset) {
    constexpr std::int32_t mostAxes = 2;
    if (cellset.AxisCount() > mostAxes) {
        throw AutomationError(
            ErrorNumber::InvalidProcedureCall,
            fmt::format("The statement has {} axes; columns and rows can be shown. Bring the "
                        "others together with CrossJoin.",
                        cellset.AxisCount()));
    }
    CellsetTable grid;
    grid.axisCount = static_cast<std::size_t>(cellset.AxisCount());
    grid.columns = ReadAxis(cellset, 0);
    grid.rows = ReadAxis(cellset, 1);
    grid.cells.reserve(grid.rows.size());
    for (std::size_t row = 0; row < grid.rows.size(); ++row) {
        grid.cells.push_back(ReadRow(cellset, static_cast<std::int32_t>(row), grid.columns.size()));
    }
    return grid;
}

const std::string& CaptionOf(const CellsetMember& member) {
    return member.caption ? *member.caption : member.name;
}

} // namespace qel
