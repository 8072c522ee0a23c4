#pragma once

#include "engine/eval/Evaluator.h"

#include <cstddef>
#include <vector>

namespace qel::engine {

/// What is left of a statement of one cell that is one read of facts, once its names are resolved: the facts
/// to read and what the axes show. Immutable; serves any number of threads as long as its cube lives.
class StatementPlan {
public:
    /// `answer` is the statement's, `cell` what its cell reads.
    StatementPlan(Cellset answer, const FactCell& cell);

    /// Reads the facts. Raises EngineError (DamagedFile).
    Cellset Run(const Cube& cube) const;
    /// About how much memory the plan takes.
    std::size_t Bytes() const;

private:
    Cellset answer_;
    std::vector<KeyRange> codes_;
    std::vector<Restriction> restrictions_; ///< views of codes_
    MemberId measure_;
};

/// An answer, and the statement's plan when it has one.
struct PlannedAnswer {
    Cellset cellset;
    std::shared_ptr<const StatementPlan> plan;
};

/// Does what RunStatement does.
PlannedAnswer RunAndPlan(const Cube& cube, std::string_view statement);

} // namespace qel::engine
