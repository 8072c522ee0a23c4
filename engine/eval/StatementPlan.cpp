#include "engine/eval/StatementPlan.h"

#include "engine/eval/CellsetBuilder.h"

#include <utility>

namespace qel::engine {

StatementPlan::StatementPlan(Cellset answer, const FactCell& cell)
    : answer_(std::move(answer)), measure_(cell.measure) {
    std::size_t count = 0;
    for (const Restriction& restriction : cell.restrictions) {
        count += restriction.codes.size();
    }
    codes_.reserve(count); // the restrictions are views of it
    for (const Restriction& restriction : cell.restrictions) {
        const KeyRange* const first = codes_.data() + codes_.size();
        codes_.insert(codes_.end(), restriction.codes.begin(), restriction.codes.end());
        restrictions_.push_back({restriction.keyColumn, CodeRanges(first, restriction.codes.size())});
    }
}

Cellset StatementPlan::Run(const Cube& cube) const {
    Cellset answer;
    answer.axes_ = answer_.axes_;
    answer.cells_.push_back(ReadFacts(cube.Facts(), restrictions_, measure_));
    cube.CheckUnchanged();
    return answer;
}

std::size_t StatementPlan::Bytes() const {
    constexpr std::size_t perMember = 3 * sizeof(AxisMember); // with its texts
    std::size_t bytes =
        sizeof *this + codes_.size() * sizeof(KeyRange) + restrictions_.size() * sizeof(Restriction);
    for (std::size_t axis = 0; axis < answer_.AxisCount(); ++axis) {
        bytes += answer_.TupleSize(axis) * perMember;
    }
    return bytes;
}

} // namespace qel::engine
