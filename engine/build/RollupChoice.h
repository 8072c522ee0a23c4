#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace qel::engine {

/// A rollup that is worth its bytes: the facts under one set of codes of two key columns, or of fewer.
struct ChosenRollup {
    std::optional<std::uint16_t> lead;   ///< a column that leads a sort order
    std::optional<std::uint16_t> second; ///< the column that comes next in it
    KeyRange leadCodes, secondCodes;     ///< as in a rollup's key
    std::uint64_t rows = 0;

    RollupKey Key() const;
};

/// Finds the pairs of members whose facts take long to read from every sort order, and takes the most costly
/// ones until the budget is used up. The model has its projections, the rollups their groups.
std::vector<ChosenRollup> ChooseRollups(const CubeModel& model, const FactColumns& facts,
                                        const RollupModel& rollups);

/// The bytes of a fact in a rollup that is rows.
std::uint64_t RollupRowBytes(const CubeModel& model, const RollupModel& rollups);
/// The bytes of a running sum of every measure.
std::uint64_t StripEntryBytes(const CubeModel& model);

} // namespace qel::engine
