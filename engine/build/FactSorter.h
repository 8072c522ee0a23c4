#pragma once

#include "engine/build/FactColumns.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace qel::engine {

/// The sort orders that serve most questions when the definition names none: each large key column leads one,
/// with the largest other column second, so that the facts of a pair of members lie together; a calendar
/// leads one, too. `isCalendar` is by key column.
std::vector<std::vector<std::uint16_t>> ChooseSortOrders(const std::vector<KeyColumn>& keyColumns,
                                                         const std::vector<bool>& isCalendar);

/// A projection's place for every code of its leading key.
ProjectionModel DescribeProjection(const std::vector<std::uint16_t>& sortOrder,
                                   const std::vector<KeyColumn>& keyColumns, const FactColumns& facts);

/// Writes the facts in every sort order of the model, and their aggregates. `progress` gets the share done.
void WriteFacts(const CubeModel& model, const FactColumns& facts, std::uint32_t cube, CubeFileWriter& writer,
                const std::function<void(double)>& progress);

} // namespace qel::engine
