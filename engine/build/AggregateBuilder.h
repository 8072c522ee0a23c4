#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The aggregates of a cube, and for those that are rows the numbers of their facts, one aggregate behind the
/// other.
struct BuiltAggregates {
    AggregateModel model;
    std::vector<std::vector<std::uint32_t>> rows;
};

/// Chooses the aggregates and sums them, on two processors. The model has its projections.
BuiltAggregates BuildAggregates(const CubeModel& model, const FactColumns& facts);

} // namespace qel::engine
