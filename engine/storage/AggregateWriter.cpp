#include "engine/storage/AggregateWriter.h"

#include "engine/storage/ByteBuffer.h"

#include <algorithm>
#include <bit>
#include <span>
#include <vector>

namespace qel::engine {

namespace {

using format::SectionKind;

/// Open addressing over a power of two of slots, as in NameIndex.h.
std::vector<std::uint32_t> BuildLookup(const std::vector<Aggregate>& records) {
    std::vector<std::uint32_t> slots(std::bit_ceil(records.size() * 2 + 1));
    const std::size_t mask = slots.size() - 1;
    for (std::uint32_t i = 0; i < records.size(); ++i) {
        std::size_t slot = records[i].key.Hash() & mask;
        while (slots[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots[slot] = i + 1;
    }
    return slots;
}

class AggregateSections {
public:
    AggregateSections(std::uint32_t cube, CubeFileWriter& writer) : cube_(cube), writer_(writer) {}

    template <class T>
    void Write(SectionKind kind, std::span<const T> values) {
        writer_.Begin({static_cast<std::uint32_t>(kind), cube_, 0, 0});
        writer_.Append(std::as_bytes(values));
        writer_.End();
    }
    template <class T>
    void Write(SectionKind kind, const std::vector<T>& values) {
        Write(kind, std::span<const T>(values));
    }
    void Write(SectionKind kind, const AppendAggregateColumn& append, std::size_t measure = 0) {
        writer_.Begin({static_cast<std::uint32_t>(kind), cube_, 0, static_cast<std::uint32_t>(measure)});
        append(kind, measure);
        writer_.End();
    }

private:
    std::uint32_t cube_;
    CubeFileWriter& writer_;
};

} // namespace

void WriteAggregates(const AggregateModel& aggregates, const CubeModel& model, std::uint32_t cube,
                     CubeFileWriter& writer, const AppendAggregateColumn& append) {
    AggregateSections sections(cube, writer);
    ByteWriter description;
    description.Put(aggregates.blockBits);
    description.Put(aggregates.timeColumn ? *aggregates.timeColumn + 1 : std::uint32_t{0});
    description.Put(static_cast<std::uint32_t>(aggregates.packedKeyColumns.size()));
    for (const AggregateTable::PackedKeyColumn& column : aggregates.packedKeyColumns) {
        description.Put(column.column);
        description.Put(column.shift);
        description.Put(column.bits);
    }
    description.Put(static_cast<std::uint32_t>(aggregates.records.size()));
    description.Put(aggregates.rows);
    description.Put(aggregates.packedKeyCount);
    description.Put(aggregates.prefixSumCount);
    const bool hasCounts =
        std::any_of(model.measures.begin(), model.measures.end(),
                    [](const Measure& measure) { return measure.function == AggregateFunction::Count; });
    description.Put(static_cast<std::uint8_t>(hasCounts));
    for (std::size_t i = 0; i < model.measures.size(); ++i) {
        description.Put(aggregates.sumWidths[i]);
        if (aggregates.sumWidths[i] != 0) {
            sections.Write(SectionKind::PrefixSums, append, i);
        }
    }
    sections.Write(SectionKind::AggregateDescription, description.Bytes());
    sections.Write(SectionKind::AggregateTimeBuckets, aggregates.timeBuckets);
    sections.Write(SectionKind::GroupStarts, aggregates.groupStarts);
    sections.Write(SectionKind::GroupRanges, aggregates.groupRanges);
    sections.Write(SectionKind::AggregateRecords, aggregates.records);
    sections.Write(SectionKind::AggregateLookup, BuildLookup(aggregates.records));
    sections.Write(SectionKind::PackedKeys, append);
    sections.Write(SectionKind::BucketMasks, append);
    sections.Write(SectionKind::PrefixStarts, append);
    if (hasCounts) {
        sections.Write(SectionKind::PrefixCounts, append);
    }
}

} // namespace qel::engine
