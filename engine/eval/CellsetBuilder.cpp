#include "engine/eval/CellsetBuilder.h"

#include <unordered_map>
#include <utility>

namespace qel::engine {

const AxisMember& Cellset::MemberAt(std::size_t axis, std::size_t position, std::size_t index) const {
    const Axis& found = (*axes_)[axis];
    return found.members[found.positions[position][index]];
}

const CellValue& Cellset::Cell(const std::vector<std::size_t>& positions) const {
    std::size_t cell = 0;
    for (std::size_t axis = AxisCount(); axis-- > 0;) {
        cell = cell * PositionCount(axis) + positions[axis];
    }
    return cells_[cell];
}

std::size_t Cellset::AxisBytes() const {
    std::size_t bytes = 0;
    for (std::size_t axis = 0; axis < AxisCount(); ++axis) {
        bytes += sizeof(Axis);
        for (const std::vector<std::uint32_t>& position : (*axes_)[axis].positions) {
            bytes += sizeof(std::vector<std::uint32_t>) + position.capacity() * sizeof(std::uint32_t);
        }
        for (const AxisMember& member : (*axes_)[axis].members) {
            bytes += sizeof member;
            for (const std::string* text :
                 {&member.name, &member.caption, &member.uniqueName, &member.levelName}) {
                bytes += text->capacity();
            }
        }
    }
    return bytes;
}

void CellsetBuilder::AddAxis(const TupleSet& tuples, std::vector<std::size_t> levelCounts) {
    Cellset::Axis& axis = axes_.emplace_back();
    axis.levelCounts = std::move(levelCounts);
    axis.tupleSize = tuples.dimensionality.size();
    axis.positions.reserve(tuples.Count());
    std::unordered_map<std::uint64_t, std::uint32_t> known;
    for (std::size_t i = 0; i < tuples.Count(); ++i) {
        std::vector<std::uint32_t>& position = axis.positions.emplace_back();
        position.reserve(tuples.dimensionality.size());
        for (std::size_t place = 0; place < tuples.dimensionality.size(); ++place) {
            const MemberRef member{tuples.dimensionality[place], tuples.At(i)[place]};
            const std::uint64_t key = std::uint64_t{member.hierarchy} << 32U | member.id;
            const auto [entry, isNew] = known.emplace(key, static_cast<std::uint32_t>(axis.members.size()));
            if (isNew) {
                axis.members.push_back(Describe(member));
            }
            position.push_back(entry->second);
        }
    }
}

Cellset CellsetBuilder::Finish(std::vector<CellValue> cells, std::shared_ptr<const TextPool> texts) {
    Cellset cellset;
    cellset.axes_ = std::make_shared<const std::vector<Cellset::Axis>>(std::move(axes_));
    cellset.cells_ = std::move(cells);
    cellset.texts_ = std::move(texts);
    return cellset;
}

AxisMember CellsetBuilder::Describe(MemberRef member) const {
    const std::size_t level = space_.LevelOf(member);
    AxisMember description;
    description.name = space_.Name(member);
    description.caption = space_.Caption(member);
    description.uniqueName = space_.UniqueName(member);
    description.levelName = space_.LevelName({member.hierarchy, level});
    description.levelDepth = static_cast<std::uint32_t>(level);
    description.hierarchy = member.hierarchy;
    if (!space_.IsMeasures(member.hierarchy) && !IsCalculated(member.id)) {
        description.member = member.id;
    }
    return description;
}

} // namespace qel::engine
