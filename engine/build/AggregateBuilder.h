#pragma once

#include "engine/build/AggregateChoice.h"
#include "engine/build/Records.h"
#include "engine/build/SpillStore.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace qel::engine {

/// Facts as the aggregates are computed from them: each behind its packed key and time bucket, in their
/// order.
class AggregateFacts {
public:
    AggregateFacts(const AggregateModel& aggregates, const RecordLayout& layout, SpillStore& store);

    /// The columns that the records passed to Append are sorted by.
    const std::vector<std::uint16_t>& SortOrder() const { return sortOrder_; }
    void Append(std::span<const std::byte> records);
    void Finish() { stream_.Finish(); }

    RecordSource All() const { return RecordSource(stream_); }
    const RecordLayout& Layout() const { return layout_; }

private:
    const AggregateModel& aggregates_;
    const RecordLayout& from_;
    RecordLayout layout_;
    std::vector<std::uint16_t> sortOrder_;
    std::vector<std::uint32_t> bucketOf_; ///< by time code
    ByteStream stream_;
};

/// Computes the chosen aggregates on two threads and writes them. `aggregates` must have its groups.
void WriteAggregatesOf(const std::vector<ChosenAggregate>& chosen, const CubeModel& model,
                       AggregateModel& aggregates, const AggregateFacts& facts, std::uint32_t cube,
                       SpillStore& store, CubeFileWriter& writer,
                       const std::function<void(double)>& progress);

} // namespace qel::engine
