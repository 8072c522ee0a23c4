#pragma once

#include "engine/eval/FactAccessPlan.h"

namespace qel::engine {

/// Which time buckets are read for a span of time whose ends lie inside a bucket.
enum class BucketRounding {
    Within, ///< only buckets inside the span; the rest is read from facts
    Nearest ///< also a bucket that sticks out, when subtracting its surplus facts is cheaper than adding
            ///< missing ones
};

/// Plans to read the facts under the restrictions from aggregates, and from facts where aggregates do not
/// cover them. No restriction may be empty, and the cube must have aggregates. Returns false, with `plan`
/// unchanged, when no aggregate helps. Raises EngineError (DamagedFile).
bool PlanAggregates(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                    BucketRounding rounding, FactAccessPlan& plan);

} // namespace qel::engine
