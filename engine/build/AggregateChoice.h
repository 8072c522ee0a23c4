#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace qel::engine {

/// An aggregate worth storing: the facts under sets of codes of at most two key columns.
struct ChosenAggregate {
    std::optional<std::uint16_t> lead;   ///< leads a sort order
    std::optional<std::uint16_t> second; ///< the next column of that sort order
    KeyRange leadCodes, secondCodes;     ///< as in AggregateKey
    std::uint64_t rows = 0;

    AggregateKey Key() const;
};

/// Estimates, for members and pairs of members, how long reading their facts from the best sort order takes,
/// and chooses the most expensive ones within a size budget. The model must have its projections, the
/// aggregates their groups.
std::vector<ChosenAggregate> ChooseAggregates(const CubeModel& model, const FactColumns& facts,
                                              const AggregateModel& aggregates);

/// Bytes per fact of a row aggregate.
std::uint64_t AggregateRowBytes(const CubeModel& model, const AggregateModel& aggregates);
/// Bytes of one prefix sum of every measure.
std::uint64_t PrefixSumBytes(const CubeModel& model);

} // namespace qel::engine
