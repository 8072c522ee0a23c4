#pragma once

#include "engine/eval/CodeRanges.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// How to read the facts under some restrictions: a projection, the rows that its order leaves over, and the
/// restrictions that every one of these rows must still be tested with.
struct ScanPlan {
    const Projection* projection = nullptr;
    std::vector<RowRange> rows;
    std::vector<Restriction> residuals;

    std::uint64_t RowCount() const;
};

ScanPlan PlanScan(const FactTable& facts, std::span<const Restriction> restrictions);

} // namespace qel::engine
