#pragma once

#include "engine/eval/MemberSpace.h"
#include "engine/eval/TupleSet.h"

namespace qel::engine {

/// Assembles a cellset from evaluated axes and cells.
class CellsetBuilder {
public:
    explicit CellsetBuilder(const MemberSpace& space) : space_(space) {}

    /// Adds the next axis, columns first, with a level count per place (Cellset::LevelCount).
    void AddAxis(const TupleSet& tuples, std::vector<std::size_t> levelCounts);
    /// Takes the cells of all combinations, columns varying fastest, and the texts among them.
    Cellset Finish(std::vector<CellValue> cells, std::shared_ptr<const TextPool> texts);

private:
    AxisMember Describe(MemberRef member) const;

    const MemberSpace& space_;
    std::vector<Cellset::Axis> axes_;
};

} // namespace qel::engine
