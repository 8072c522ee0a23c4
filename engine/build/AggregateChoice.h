#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace qel::engine {

/// An aggregate that is worth its bytes: the facts under one set of codes of two key columns, or of fewer.
struct ChosenAggregate {
    std::optional<std::uint16_t> lead;   ///< a column that leads a sort order
    std::optional<std::uint16_t> second; ///< the column that comes next in it
    KeyRange leadCodes, secondCodes;     ///< as in an aggregate's key
    std::uint64_t rows = 0;

    AggregateKey Key() const;
};

/// Finds the pairs of members whose facts take long to read from every sort order, and takes the most costly
/// ones until the budget is used up. The model has its projections, the aggregates their groups.
std::vector<ChosenAggregate> ChooseAggregates(const CubeModel& model, const FactColumns& facts,
                                              const AggregateModel& aggregates);

/// The bytes of a fact in an aggregate that is rows.
std::uint64_t AggregateRowBytes(const CubeModel& model, const AggregateModel& aggregates);
/// The bytes of a running sum of every measure.
std::uint64_t PrefixSumBytes(const CubeModel& model);

} // namespace qel::engine
