#pragma once

#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"
#include "engine/storage/Format.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace qel::engine {

/// Appends to the writer what is in one of the sections PackedKeys, BucketMasks, PrefixStarts, PrefixCounts,
/// and PrefixSums of a measure.
using AppendAggregateColumn = std::function<void(format::SectionKind kind, std::size_t measure)>;

/// Writes a cube's aggregates except their rows; the caller writes the sections AggregatePackedColumns and
/// AggregateValues afterwards.
void WriteAggregates(const AggregateModel& aggregates, const CubeModel& model, std::uint32_t cube,
                     CubeFileWriter& writer, const AppendAggregateColumn& append);

} // namespace qel::engine
