#pragma once

#include "engine/build/FactColumns.h"
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

/// Describes a projection: its sort order and the first row of every leading code.
ProjectionModel DescribeProjection(const std::vector<std::uint16_t>& sortOrder,
                                   const std::vector<KeyColumn>& keyColumns, const FactColumns& facts);

/// Writes the facts in every sort order of the model, then the aggregates. `progress` receives the share
/// done.
void WriteFacts(const CubeModel& model, const FactColumns& facts, std::uint32_t cube, CubeFileWriter& writer,
                const std::function<void(double)>& progress);

} // namespace qel::engine
