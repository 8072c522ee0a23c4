#pragma once

#include "engine/build/AggregateChoice.h"
#include "engine/build/FactColumns.h"
#include "engine/build/Records.h"
#include "engine/build/SpillStore.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace qel::engine {

/// The default sort orders. Each large key column leads one, with the largest other column second, so that
/// the facts of a pair of members are contiguous; each calendar leads one too. `isCalendar` is indexed by key
/// column.
std::vector<std::vector<std::uint16_t>> ChooseSortOrders(const std::vector<KeyColumn>& keyColumns,
                                                         const std::vector<bool>& isCalendar);

/// Describes a projection: its sort order and the first row of every leading code. `facts` are those of each
/// leading code.
ProjectionModel DescribeProjection(const std::vector<std::uint16_t>& sortOrder,
                                   const std::vector<std::uint64_t>& facts);

/// The facts of a cube in the order of their lines, ready to be sorted.
struct CubeFacts {
    RecordLayout layout;
    ByteStream records;
    CodeCounts codes;
    std::vector<DetailTexts> details;
};

/// Writes the facts in every sort order of the model, then the aggregates, and empties `facts`. `progress`
/// receives the share done.
void WriteFacts(const CubeModel& model, CubeFacts& facts, std::uint32_t cube, SpillStore& store,
                CubeFileWriter& writer, const std::function<void(double)>& progress);

} // namespace qel::engine
