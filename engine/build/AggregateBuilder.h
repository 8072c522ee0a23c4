#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The aggregates of a cube, and the fact numbers of each row aggregate, in the order of the row aggregates.
struct BuiltAggregates {
    AggregateModel model;
    std::vector<std::vector<std::uint32_t>> rows;
};

/// Chooses the aggregates and computes them on two threads. The model must have its projections.
BuiltAggregates BuildAggregates(const CubeModel& model, const FactColumns& facts);

} // namespace qel::engine
