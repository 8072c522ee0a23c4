#include "engine/eval/StatementPlan.h"

#include "engine/eval/CellsetBuilder.h"

#include <utility>

namespace qel::engine {

StatementPlan::StatementPlan(const Cube& cube, Cellset answer, const FactCell& cell)
    : cube_(cube), answer_(std::move(answer)), measure_(cell.measure),
      plan_(PlanAccess(cube.Facts(), cell.restrictions, measure_)) {}

Cellset StatementPlan::Run() const {
    Cellset answer;
    answer.axes_ = answer_.axes_;
    answer.cells_.push_back(ValueOf(plan_.Sum(), cube_.Facts().Measures()[measure_]));
    cube_.CheckUnchanged();
    return answer;
}

std::size_t StatementPlan::Bytes() const { return sizeof *this + answer_.AxisBytes() + plan_.OwnedBytes(); }

} // namespace qel::engine
