#include "platform/data/embedded/FlattenedRows.h"

#include "platform/data/embedded/CellVariant.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/BracketedName.h"

#include <algorithm>

namespace qel {

namespace {

using engine::AxisMember;

constexpr std::size_t columnsAxis = 0;
constexpr std::size_t rowsAxis = 1;

/// Fills the fields of one hierarchy of the rows axis.
class HierarchyFields {
public:
    /// For the hierarchy of this member, with `levelCount` levels from the top.
    HierarchyFields(const engine::Cube& cube, const AxisMember& member, std::size_t levelCount) {
        if (member.hierarchy >= cube.Hierarchies().size()) {
            names_.push_back("[Measures]." + engine::BracketedName(member.levelName) + captionSuffix);
            return;
        }
        stored_ = &cube.Hierarchies()[member.hierarchy];
        firstLevel_ = stored_->HasAll() ? 1 : 0;
        for (std::size_t level = firstLevel_; level < levelCount; ++level) {
            names_.push_back(stored_->UniqueName() + "." +
                             engine::BracketedName(stored_->Levels()[level].name) + captionSuffix);
        }
    }

    const std::vector<std::string>& Names() const { return names_; }

    void Append(const AxisMember& member, std::vector<Variant>& row) const {
        std::vector<Variant> values(names_.size(), Null{});
        if (member.member == engine::noMember) {
            SetField(values, member.levelDepth, member.caption);
        }
        for (auto step = member.member; step != engine::noMember; step = stored_->Parent(step)) {
            SetField(values, stored_->LevelOf(step), std::string(stored_->MemberCaption(step)));
        }
        row.insert(row.end(), values.begin(), values.end());
    }

private:
    static constexpr const char* captionSuffix = ".[MEMBER_CAPTION]";

    void SetField(std::vector<Variant>& values, std::size_t level, std::string caption) const {
        if (level >= firstLevel_ && level - firstLevel_ < values.size()) {
            values[level - firstLevel_] = std::move(caption);
        }
    }

    const engine::Hierarchy* stored_ = nullptr; ///< none for the measures
    std::size_t firstLevel_ = 0;
    std::vector<std::string> names_;
};

std::vector<HierarchyFields> RowHierarchies(const engine::Cube& cube, const engine::Cellset& cellset) {
    std::vector<HierarchyFields> hierarchies;
    if (cellset.AxisCount() <= rowsAxis || cellset.PositionCount(rowsAxis) == 0) {
        return hierarchies;
    }
    for (std::size_t place = 0; place < cellset.TupleSize(rowsAxis); ++place) {
        hierarchies.emplace_back(cube, cellset.MemberAt(rowsAxis, 0, place),
                                 cellset.LevelCount(rowsAxis, place));
    }
    return hierarchies;
}

std::string ColumnName(const engine::Cellset& cellset, std::size_t position) {
    std::string name;
    for (std::size_t place = 0; place < cellset.TupleSize(columnsAxis); ++place) {
        name += (name.empty() ? "" : ".") + cellset.MemberAt(columnsAxis, position, place).uniqueName;
    }
    return name;
}

void AppendCells(const engine::Cellset& cellset, std::vector<std::size_t> place, std::vector<Variant>& row) {
    for (std::size_t column = 0; column < cellset.PositionCount(columnsAxis); ++column) {
        place.front() = column;
        const auto& cell = cellset.Cell(place);
        row.push_back(CellVariant(cell));
    }
}

} // namespace

Rowset Flatten(const engine::Cube& cube, const engine::Cellset& cellset) {
    constexpr std::size_t mostAxes = 2;
    if (cellset.AxisCount() > mostAxes) {
        throw ProviderError(errorNotSupported, "A recordset shows two axes at most, columns and rows.");
    }
    Rowset table;
    const auto hierarchies = RowHierarchies(cube, cellset);
    for (const auto& hierarchy : hierarchies) {
        table.fields.insert(table.fields.end(), hierarchy.Names().begin(), hierarchy.Names().end());
    }
    const bool hasColumns = cellset.AxisCount() > columnsAxis;
    for (std::size_t column = 0; hasColumns && column < cellset.PositionCount(columnsAxis); ++column) {
        table.fields.push_back(ColumnName(cellset, column));
    }

    const std::size_t rowCount = cellset.AxisCount() > rowsAxis ? cellset.PositionCount(rowsAxis) : 1;
    for (std::size_t position = 0; hasColumns && position < rowCount; ++position) {
        auto& row = table.rows.emplace_back();
        row.reserve(table.fields.size());
        for (std::size_t place = 0; place < hierarchies.size(); ++place) {
            hierarchies[place].Append(cellset.MemberAt(rowsAxis, position, place), row);
        }
        std::vector<std::size_t> cell(cellset.AxisCount(), position);
        AppendCells(cellset, std::move(cell), row);
    }
    return table;
}

} // namespace qel
