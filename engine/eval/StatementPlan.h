#pragma once

#include "engine/eval/CellPlan.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace qel::engine {

/// The plan of a statement whose only cell is a single read of facts: names are resolved and the access path
/// is chosen; only the facts remain to be read. Immutable and thread-safe; valid as long as its cube.
class StatementPlan {
public:
    /// `answer` is the statement's result, `cell` what its cell reads. Raises EngineError (DamagedFile), as
    /// does Run.
    StatementPlan(const Cube& cube, Cellset answer, const FactCell& cell);
    ~StatementPlan() = default;
    StatementPlan(const StatementPlan&) = delete;
    StatementPlan& operator=(const StatementPlan&) = delete;

    /// Reads the facts.
    Cellset Run() const;
    /// Approximate memory of the plan in bytes.
    std::size_t Bytes() const;

private:
    Cellset answer_;
    CellPlan cell_;
};

/// The result of a statement, and its plan if it has one.
struct PlannedAnswer {
    Cellset cellset;
    std::shared_ptr<const StatementPlan> plan;
};

/// Same as RunStatement, and also returns the plan.
PlannedAnswer RunAndPlan(const Cube& cube, std::string_view statement);

} // namespace qel::engine
