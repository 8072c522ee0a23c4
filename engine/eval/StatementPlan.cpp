#include "engine/eval/StatementPlan.h"

#include <utility>

namespace qel::engine {

StatementPlan::StatementPlan(const Cube& cube, Cellset answer, const FactCell& cell)
    : answer_(std::move(answer)), cell_(cube, cell) {}

Cellset StatementPlan::Run() const {
    Cellset answer;
    answer.axes_ = answer_.axes_;
    answer.cells_.push_back(cell_.Value());
    return answer;
}

std::size_t StatementPlan::Bytes() const { return sizeof *this + answer_.AxisBytes() + cell_.Bytes(); }

} // namespace qel::engine
