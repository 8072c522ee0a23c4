#pragma once

#include "engine/eval/MemberSpace.h"
#include "engine/eval/TupleSet.h"

namespace qel::engine {

/// Puts a cellset together from evaluated axes and cells.
class CellsetBuilder {
public:
    explicit CellsetBuilder(const MemberSpace& space) : space_(space) {}

    /// Axes are added columns first.
    /// `levelCounts` as Cellset::LevelCount tells them.
    void AddAxis(const TupleSet& tuples, std::vector<std::size_t> levelCounts);
    /// The cells of all combinations, columns varying fastest.
    Cellset Finish(std::vector<CellValue> cells);

private:
    AxisMember Describe(MemberRef member) const;

    const MemberSpace& space_;
    std::vector<Cellset::Axis> axes_;
};

} // namespace qel::engine
