#include "engine/storage/AggregateWriter.h"

#include "engine/storage/ByteBuffer.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace qel::engine {

namespace {

using format::SectionKind;

constexpr std::uint8_t narrowWidth = 4, wideWidth = 8;

std::uint8_t SumWidth(const std::vector<std::int64_t>& sums) {
    const bool isNarrow = std::all_of(sums.begin(), sums.end(), [](std::int64_t sum) {
        return sum >= std::numeric_limits<std::int32_t>::min() &&
               sum <= std::numeric_limits<std::int32_t>::max();
    });
    return isNarrow ? narrowWidth : wideWidth;
}

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
    void Write(SectionKind kind, std::span<const T> values, std::size_t second = 0) {
        writer_.Begin({static_cast<std::uint32_t>(kind), cube_, 0, static_cast<std::uint32_t>(second)});
        writer_.Append(std::as_bytes(values));
        writer_.End();
    }
    template <class T>
    void Write(SectionKind kind, const std::vector<T>& values, std::size_t second = 0) {
        Write(kind, std::span<const T>(values), second);
    }

private:
    std::uint32_t cube_;
    CubeFileWriter& writer_;
};

} // namespace

void WriteAggregates(const AggregateModel& aggregates, const CubeModel& model, std::uint32_t cube,
                     CubeFileWriter& writer) {
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
    description.Put(std::uint64_t{aggregates.packedKeys.size()});
    description.Put(aggregates.prefixStarts.back());
    const bool hasCounts =
        std::any_of(model.measures.begin(), model.measures.end(),
                    [](const Measure& measure) { return measure.function == AggregateFunction::Count; });
    description.Put(static_cast<std::uint8_t>(hasCounts));
    for (std::size_t i = 0; i < model.measures.size(); ++i) {
        if (model.measures[i].function == AggregateFunction::Count) {
            description.Put(std::uint8_t{0});
            continue;
        }
        const std::uint8_t width = SumWidth(aggregates.sums[i]);
        description.Put(width);
        if (width == wideWidth) {
            sections.Write(SectionKind::PrefixSums, aggregates.sums[i], i);
        } else {
            sections.Write(SectionKind::PrefixSums,
                           std::vector<std::int32_t>(aggregates.sums[i].begin(), aggregates.sums[i].end()),
                           i);
        }
    }
    sections.Write(SectionKind::AggregateDescription, description.Bytes());
    sections.Write(SectionKind::AggregateTimeBuckets, aggregates.timeBuckets);
    sections.Write(SectionKind::GroupStarts, aggregates.groupStarts);
    sections.Write(SectionKind::GroupRanges, aggregates.groupRanges);
    sections.Write(SectionKind::AggregateRecords, aggregates.records);
    sections.Write(SectionKind::AggregateLookup, BuildLookup(aggregates.records));
    sections.Write(SectionKind::PackedKeys, aggregates.packedKeys);
    sections.Write(SectionKind::BucketMasks, aggregates.bucketMasks);
    sections.Write(SectionKind::PrefixStarts, aggregates.prefixStarts);
    if (hasCounts) {
        sections.Write(SectionKind::PrefixCounts, aggregates.counts);
    }
}

} // namespace qel::engine
