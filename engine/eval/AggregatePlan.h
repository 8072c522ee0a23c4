#pragma once

#include "engine/eval/FactAccessPlan.h"

namespace qel::engine {

/// What strips of aggregates may be read for at the ends of a span of time.
enum class BucketRounding {
    Within, ///< what lies in the span
    Nearest ///< more than that, where the facts that are too many are fewer than those that would lack
};

/// Adds to `plan` how to read the facts under the restrictions, none of which is empty, from aggregates,
/// and from facts what these do not hold. Returns false, with nothing added, when no aggregate helps. The
/// cube has aggregates. Raises EngineError (DamagedFile).
bool PlanAggregates(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                    BucketRounding rounding, FactAccessPlan& plan);

} // namespace qel::engine
