#include "engine/eval/StatementPlan.h"

#include "engine/eval/CellsetBuilder.h"

#include <utility>

namespace qel::engine {

namespace {

/// The cell's restrictions, with their codes copied to `codes`.
std::vector<Restriction> Own(const FactCell& cell, std::vector<KeyRange>& codes) {
    std::size_t count = 0;
    for (const Restriction& restriction : cell.restrictions) {
        count += restriction.codes.size();
    }
    codes.reserve(count); // the restrictions are views of it
    std::vector<Restriction> restrictions;
    for (const Restriction& restriction : cell.restrictions) {
        const KeyRange* const first = codes.data() + codes.size();
        codes.insert(codes.end(), restriction.codes.begin(), restriction.codes.end());
        restrictions.push_back({restriction.keyColumn, CodeRanges(first, restriction.codes.size())});
    }
    return restrictions;
}

} // namespace

StatementPlan::StatementPlan(const Cube& cube, Cellset answer, const FactCell& cell)
    : cube_(cube), answer_(std::move(answer)), measure_(cell.measure),
      reading_(PlanReading(cube.Facts(), Own(cell, codes_), measure_)) {}

Cellset StatementPlan::Run() const {
    Cellset answer;
    answer.axes_ = answer_.axes_;
    answer.cells_.push_back(ValueOf(reading_.Sum(), cube_.Facts().Measures()[measure_]));
    cube_.CheckUnchanged();
    return answer;
}

std::size_t StatementPlan::Bytes() const {
    return sizeof *this + answer_.AxisBytes() + codes_.size() * sizeof(KeyRange) + reading_.OwnedBytes();
}

} // namespace qel::engine
