#pragma once

#include "engine/eval/CodeRanges.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// How to read the facts under some restrictions: a projection, the runs of rows that its sort order selects,
/// and the residual predicates that must still be tested on each row.
struct ScanPlan {
    const Projection* projection = nullptr;
    std::vector<RowRange> rows;
    std::vector<Restriction> residuals;

    std::uint64_t RowCount() const;
};

ScanPlan PlanScan(const FactTable& facts, std::span<const Restriction> restrictions);

} // namespace qel::engine
