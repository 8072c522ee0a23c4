#pragma once

#include "engine/eval/Evaluator.h"
#include "engine/eval/FactAccessPlan.h"
#include "qel/engine/CellQuery.h"

#include <cstddef>

namespace qel::engine {

/// The plan of a cell that is a single read of facts.
class CellPlan final : public PlannedCell {
public:
    /// Raises EngineError (DamagedFile), as does Value.
    CellPlan(const Cube& cube, const FactCell& cell)
        : cube_(cube), measure_(cell.measure), plan_(PlanAccess(cube.Facts(), cell.restrictions, measure_)) {}

    CellValue Value() const override {
        const CellValue value = ValueOf(plan_.Sum(), cube_.Facts().Measures()[measure_]);
        cube_.CheckUnchanged();
        return value;
    }
    void Prefetch() const override { plan_.Prefetch(); }
    std::size_t Bytes() const override { return sizeof *this + plan_.OwnedBytes(); }

private:
    const Cube& cube_;
    MemberId measure_;
    FactAccessPlan plan_;
};

} // namespace qel::engine
