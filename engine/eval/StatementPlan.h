#pragma once

#include "engine/eval/Evaluator.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace qel::engine {

/// What is left of a statement of one cell that is one read of facts, once its names are resolved and its
/// facts are found: where these are and what the axes show. Immutable; serves any number of threads as long
/// as its cube lives.
class StatementPlan {
public:
    /// `answer` is the statement's, `cell` what its cell reads. Raises EngineError (DamagedFile), as Run
    /// does.
    StatementPlan(const Cube& cube, Cellset answer, const FactCell& cell);
    ~StatementPlan() = default;
    StatementPlan(const StatementPlan&) = delete;
    StatementPlan& operator=(const StatementPlan&) = delete;

    /// Reads the facts.
    Cellset Run() const;
    /// About how much memory the plan takes.
    std::size_t Bytes() const;

private:
    const Cube& cube_;
    Cellset answer_;
    MemberId measure_;
    FactAccessPlan plan_;
};

/// An answer, and the statement's plan when it has one.
struct PlannedAnswer {
    Cellset cellset;
    std::shared_ptr<const StatementPlan> plan;
};

/// Does what RunStatement does.
PlannedAnswer RunAndPlan(const Cube& cube, std::string_view statement);

} // namespace qel::engine
